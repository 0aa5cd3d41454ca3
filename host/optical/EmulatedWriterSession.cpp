#include "optical/EmulatedWriterSession.h"

#include <atomic>
#include <utility>
#include <vector>

#include "os/EmulatedDevice.h"
#include "scsi/Opcodes.h"
#include "sim/mmc/MediaKind.h"

namespace host {

// Passes every call to the writer, and plays the faults around it.
class FaultingWriterTarget final : public os::EmulatedDevice, public kivscsi::ScsiTarget {
public:
    FaultingWriterTarget(std::shared_ptr<sim::mmc::EmulatedWriter> writer,
                         const EmulatedWriterSetup& setup)
        : writer_(std::move(writer)),
          staleAfterFlush_(setup.staleAfterFlush),
          vanishAt_(setup.vanishAtCommand.value_or(0)) {}

    os::Error open(uint32_t access) override { return writer_->open(access); }
    os::GeometryResult geometry() override { return writer_->geometry(); }

    void execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) override {
        if (vanishAt_ != 0 && ++commands_ == vanishAt_) writer_->disappear();
        writer_->execute(command, response);
        const bool flushed = command.cdb[0] == kivscsi::opcode::kSynchronizeCache &&
                             response.transportStatus == kivscsi::kStatusGood &&
                             response.scsiStatus == kivscsi::kScsiGood;
        if (!flushed) return;
        for (uint32_t lba : staleAfterFlush_)
            writer_->holdStaleData(lba, std::vector<uint8_t>(sim::mmc::kSectorBytes, 0));
    }

private:
    std::shared_ptr<sim::mmc::EmulatedWriter> writer_;
    std::vector<uint32_t> staleAfterFlush_;
    uint32_t vanishAt_;
    std::atomic<uint32_t> commands_{0};
};

EmulatedWriterSession::EmulatedWriterSession(const EmulatedWriterSetup& setup, std::string name)
    : name_(std::move(name)),
      config_(setup.config),
      writer_(std::make_shared<sim::mmc::EmulatedWriter>(setup.config)) {
    for (const sim::mmc::SenseFault& fault : setup.faults) writer_->injectSense(fault);
    for (uint32_t lba : setup.lostWrites) writer_->loseWritesAt(lba);
    os::registerEmulatedDevice(name_, std::make_shared<FaultingWriterTarget>(writer_, setup));
    if (setup.disc) writer_->insertDisc(*setup.disc);
}

EmulatedWriterSession::~EmulatedWriterSession() { os::unregisterEmulatedDevice(name_); }

std::string EmulatedWriterSession::model() const { return config_.vendor + " " + config_.product; }

}  // namespace host

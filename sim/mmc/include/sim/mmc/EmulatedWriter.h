// sim::mmc::EmulatedWriter: an optical writer that lives in the process. It answers the real
// MMC command blocks the SCSI library sends (through kivscsi::ScsiTarget) and the device
// calls of the os layer (open, geometry), over a disc model in its tray.
//
// Register it under a device name; from then on the SCSI library and os::openDevice reach it
// by that name exactly as they would reach a drive:
//
//     auto writer = sim::mmc::registerEmulatedWriter(sim::mmc::kDefaultWriterName);
//     writer->insertDisc(sim::mmc::discOf(sim::mmc::MediaKind::DvdPlusR));
//
// A disc becomes ready WriterConfig::spinUpMilliseconds after the tray closed on it (or later,
// keepBecomingReadyFor), answering 2/04/01 until then; with unitAttentionOnMediumChange the
// first command after that answers 6/28/00 once. DVD+RW and BD-RE go on formatting in the
// background after FORMAT UNIT: the disc information gives the state, REQUEST SENSE the progress.
// WRITE on CD-R/RW and sequential DVD-R kinds needs a write parameters page that suits the
// disc (WriterConfig::enforceWriteParameters); the power-on page suits DVD-R but not CD.
//
// Time: every delay (spin-up, blank, format, data transfer at the selected speed) passes on
// the one clock (os::clock()). A command that takes time sleeps on it without holding the
// writer's lock, so a worker thread's TEST UNIT READY sees the operation in progress.
// Thread-safe: commands may come from several threads.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "os/EmulatedDevice.h"
#include "scsi/Transport.h"
#include "sim/mmc/DiscModel.h"
#include "sim/mmc/Faults.h"
#include "sim/mmc/WriterConfig.h"
#include "sim/mmc/WriterState.h"

namespace sim::mmc {

inline constexpr const char* kDefaultWriterName = "\\\\.\\SimCdRom0";

// One command as the writer received and answered it.
struct CommandRecord {
    std::vector<uint8_t> cdb;  // the command block, cdbLength bytes
    Sense sense;               // good: GOOD status; else the CHECK CONDITION sense
    bool deviceGone = false;   // answered as a vanished device
    uint64_t atMs = 0;         // the one clock's monotonic time at arrival
};

// What can be seen of the drive from outside, for assertions.
struct WriterSnapshot {
    bool trayOpen = false;
    bool removalPrevented = false;
    bool discInTray = false;
    bool ready = false;  // a disc is loaded, spun up and no blank or format runs
    uint16_t profile = 0;
    DiscStatus status = DiscStatus::Blank;
    uint32_t nextWritable = 0;
    uint32_t readableSectors = 0;
    uint16_t currentWriteSpeed = 0;  // kB/s
    size_t dirtyCacheSectors = 0;
};

class EmulatedWriter final : public os::EmulatedDevice, public kivscsi::ScsiTarget {
public:
    explicit EmulatedWriter(const WriterConfig& config = {});
    ~EmulatedWriter() override;

    // os::EmulatedDevice: refused once the device has disappeared; the geometry of the disc
    // (2048-byte sectors, its capacity) while one is ready, an error otherwise.
    os::Error open(uint32_t access) override;
    os::GeometryResult geometry() override;

    // kivscsi::ScsiTarget: answers one command block.
    void execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) override;

    // What a person does at the drive. insertDisc replaces any disc and closes the tray; the
    // disc is ready after the configured spin-up time. removeDisc leaves the tray open and
    // empty, whatever the prevent state. pressEjectButton opens a closed tray (false, and an
    // eject-request media event, while removal is prevented) and closes an open one.
    void insertDisc(const DiscModel& disc);
    void removeDisc();
    bool pressEjectButton();

    // Faults.
    void injectSense(const SenseFault& fault);
    // The loaded disc answers "becoming ready" (0401) for `milliseconds` from now.
    void keepBecomingReadyFor(uint32_t milliseconds);
    // Writes that reach the medium at `lba` are dropped (the command still succeeds).
    void loseWritesAt(uint32_t lba);
    // The cache holds `sector` (kSectorBytes) for `lba` as clean data: plain reads return it,
    // forced-unit-access reads the medium.
    void holdStaleData(uint32_t lba, std::vector<uint8_t> sector);
    // Every command ends with the transport failure "device gone" until reappear().
    void disappear();
    void reappear();
    // Forgets every planted fault, the device's disappearance included.
    void clearFaults();

    // Inspection.
    WriterSnapshot snapshot() const;
    // The sector as the medium holds it (not the cache); nullopt without a disc.
    std::optional<std::vector<uint8_t>> mediumSector(uint32_t lba) const;
    std::vector<CommandRecord> history() const;
    void clearHistory();

private:
    mutable std::mutex mutex_;
    WriterState state_;
    HandlerTable handlers_{};
    std::vector<CommandRecord> history_;
    uint64_t unchargedMicroseconds_ = 0;
};

// Creates a writer and registers it with os::registerEmulatedDevice under `name`.
std::shared_ptr<EmulatedWriter> registerEmulatedWriter(const std::string& name,
                                                       const WriterConfig& config = {});

}  // namespace sim::mmc

#include "OpticalDriveFixture.h"

#include "os/EmulatedDevice.h"
#include "sim/mmc/DiscModel.h"

namespace optest {

OpticalDriveTest::OpticalDriveTest() {
    sim::mmc::WriterConfig config;
    config.spinUpMilliseconds = 2000;
    writer = sim::mmc::registerEmulatedWriter(kDevice, config);
    kiv::LogFactory::setPriority(1);
    kiv::LogFactory::addSink(std::make_unique<kiv::MemorySink>(log_));
    drive = std::make_unique<HostDrive>(device);
}

OpticalDriveTest::~OpticalDriveTest() {
    drive.reset();
    kiv::LogFactory::removeAllSinks();
    kiv::LogFactory::setPriority(4);
    os::unregisterEmulatedDevice(kDevice);
}

void OpticalDriveTest::loadReady(MediaKind kind) {
    sim::mmc::DiscModel disc = sim::mmc::discOf(kind);
    if (kind == MediaKind::DvdPlusRw || kind == MediaKind::BdRe || kind == MediaKind::DvdRam) {
        disc.status = sim::mmc::DiscStatus::Complete;
    }
    loadReady(disc);
}

void OpticalDriveTest::loadReady(const sim::mmc::DiscModel& disc) {
    writer->insertDisc(disc);
    clock.advance(2000);
}

void OpticalDriveTest::fail(uint8_t opcode, uint16_t code, uint32_t times) {
    sim::mmc::SenseFault fault;
    fault.opcode = opcode;
    fault.times = times;
    fault.sense = sim::mmc::senseOf(code);
    writer->injectSense(fault);
}

std::vector<std::vector<uint8_t>> OpticalDriveTest::commands(uint8_t opcode) const {
    std::vector<std::vector<uint8_t>> found;
    for (const sim::mmc::CommandRecord& record : writer->history()) {
        if (!record.cdb.empty() && record.cdb[0] == opcode) found.push_back(record.cdb);
    }
    return found;
}

std::vector<std::string> OpticalDriveTest::logged(int priority) const {
    std::vector<std::string> lines;
    for (const kiv::LogRecord& record : log_.records()) {
        if (record.logger.toUtf8() == kLogger && record.priority == priority) {
            lines.push_back(record.message.toUtf8());
        }
    }
    return lines;
}

}  // namespace optest

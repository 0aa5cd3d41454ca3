#include "cli/DriveOpening.h"

#include "cli/SimDeviceText.h"
#include "drives/BlockDeviceDrive.h"
#include "drives/DeviceIdentity.h"
#include "drives/RecordingDrive.h"
#include "kiv/Exception.h"
#include "sim/SimulatedDrive.h"

namespace host {
namespace {

OpenResult failed(OpenFailure failure, std::string error) {
    OpenResult result;
    result.failure = failure;
    result.error = std::move(error);
    return result;
}

std::unique_ptr<kivrlibdrive::Drive> buildSimulatedDrive(const quel5::DiagDevice& device,
                                                         const SimDeviceDescription& described) {
    sim::SimulatedDriveConfig config;
    config.totalSectors = described.totalSectors;
    config.bytesPerSector = described.bytesPerSector;
    config.cost.perReadMs = described.costMs;
    config.cost.perWriteMs = described.costMs;
    config.cost.slowReads = described.slow;
    config.switches.provideEstimatedTime = true;
    config.recordOperations = false;
    auto drive = std::make_unique<RecordingDrive<sim::SimulatedDrive>>(device, config);
    for (const SectorSpan& span : described.bad)
        drive->injectFaultSpan(span.first, span.count, sim::SectorFault::ReadFails);
    for (uint64_t sector : described.flaky) drive->injectFault(sector, sim::SectorFault::Flaky);
    for (uint64_t sector : described.internal)
        drive->injectFault(sector, sim::SectorFault::ReadInternalError);
    return drive;
}

}  // namespace

OpenResult openDrive(const std::string& text) {
    if (text.empty()) return failed(OpenFailure::BadText, "the device text is empty");
    OpenResult result;
    result.opened.device = std::make_unique<quel5::DiagDevice>(QuelString(text.c_str()));
    if (isSimDeviceText(text)) {
        std::string error;
        const auto described = parseSimDeviceText(text, &error);
        if (!described) return failed(OpenFailure::BadText, text + ": " + error);
        result.opened.drive = buildSimulatedDrive(*result.opened.device, *described);
        return result;
    }
    std::string error;
    try {
        result.opened.drive = openBlockDrive(*result.opened.device, &error);
    } catch (const kiv::Exception& e) {
        error = e.getMessage().toUtf8();
    }
    if (!result.opened.drive) return failed(OpenFailure::CannotOpen, text + ": " + error);
    return result;
}

std::string lockRefusalOf(const kivrlibdrive::Drive& drive) {
    const auto* block = dynamic_cast<const BlockDeviceDrive*>(&drive);
    if (block == nullptr || block->lockFailure().empty()) return "";
    // An exclusive open refused with nothing mounted: say which device built on it holds it.
    const std::string holders = holdersOf(block->path());
    if (holders.empty() || block->lockFailure().find("exclusively") == std::string::npos)
        return block->lockFailure();
    return block->lockFailure() + " (held by " + holders + ", built on it)";
}

}  // namespace host

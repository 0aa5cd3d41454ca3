// sim: texts: parsed, and when valid built into the simulated drive, which then reads its
// first and last sectors and the edges of every bad span. Time is virtual, so a large cost=
// does not slow the fuzzer.
#include <algorithm>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "cli/DriveOpening.h"
#include "cli/SimDeviceText.h"

namespace {

void readAt(kivrlibdrive::Drive& drive, uint64_t sector, std::vector<uint8_t>& buffer) {
    drive.ReadSectors(sector, 1, buffer.data(), static_cast<unsigned int>(buffer.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzinput::useVirtualClock();
    std::string text(fuzzinput::textOf(data, size));
    if (!host::isSimDeviceText(text)) text = "sim:" + text;
    std::string error;
    const auto described = host::parseSimDeviceText(text, &error);
    if (!described) {
        if (error.empty()) __builtin_trap();
        return 0;
    }
    const host::OpenResult opened = host::openDrive(text);
    if (opened.failure != host::OpenFailure::None || !opened.opened.drive) __builtin_trap();
    kivrlibdrive::Drive& drive = *opened.opened.drive;
    std::vector<uint8_t> buffer(described->bytesPerSector);
    readAt(drive, 0, buffer);
    readAt(drive, described->totalSectors - 1, buffer);
    const std::size_t spans = std::min<std::size_t>(described->bad.size(), 64);
    for (std::size_t i = 0; i < spans; ++i) {
        const host::SectorSpan& span = described->bad[i];
        readAt(drive, span.first, buffer);
        readAt(drive, span.first + span.count - 1, buffer);
        readAt(drive, span.first + span.count, buffer);
    }
    return 0;
}

#include "OpticalDriveLog.h"

#include "os/Clock.h"

namespace kivrlibdrive::optical {

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    // Initialised once even when a blanking thread is the first to log.
    static kiv::Logger* const created = classLogger(slot, L"libDrive.Windows.WindowsOpticalDrive");
    return created;
}

void log(int priority, int line, const kiv::String& text) {
    logger()->log(priority, kiv::String::fromNumber(static_cast<uint64_t>(line)) + L" " + text);
}

uint32_t millisecondsSince(uint32_t startTick) { return os::tickCount() - startTick; }

}  // namespace kivrlibdrive::optical

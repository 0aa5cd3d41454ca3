#include "kiv/System.h"

#include "kiv/FileSystem.h"
#include "os/Clock.h"

namespace kiv {

Time System::getCurrentTime() {
    const os::TimeOfDay now = os::timeOfDay();
    return Time{now.seconds, now.milliseconds};
}

uint64_t System::getCurrentTimeMilliseconds() {
    const Time now = getCurrentTime();
    return now.seconds * 1000 + now.milliseconds;
}

void System::sleep(uint32_t milliseconds) { os::sleepMilliseconds(milliseconds); }

bool System::exists(const String& path) { return FileSystem::exists(path); }

}  // namespace kiv

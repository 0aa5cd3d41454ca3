// Time as the common runtime gives it, always read from the one clock of the platform layer.
#pragma once

#include <cstdint>

#include "kiv/Export.h"
#include "kiv/String.h"

namespace kiv {

struct KIV_API Time {
    uint64_t seconds = 0;       // since 1970-01-01 UTC
    uint32_t milliseconds = 0;  // 0..999
};

class KIV_API System {
public:
    static Time getCurrentTime();
    // seconds * 1000 + milliseconds of getCurrentTime().
    static uint64_t getCurrentTimeMilliseconds();
    // Sleeps on the one clock: a virtual clock advances at once.
    static void sleep(uint32_t milliseconds);
    // True when `path` names an existing file, directory or device (as FileSystem::exists).
    static bool exists(const String& path);
};

}  // namespace kiv

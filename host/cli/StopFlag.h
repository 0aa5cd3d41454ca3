// The one stop flag the platform's signal or console handlers set. Internal to StopRequest.
#pragma once

#include <atomic>

namespace host {

static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

inline std::atomic<bool>& stopFlag() {
    static std::atomic<bool> flag{false};
    return flag;
}

}  // namespace host

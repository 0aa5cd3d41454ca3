// testsupport::ScopedVirtualClock: an os::VirtualClock installed as the one clock for the
// object's lifetime; the clock installed before it is put back when it ends.
//
// REQUIRES: the same as os::installClock: no sleep or wait in progress and no os::Thread running
// at construction and destruction.
#pragma once

#include <cstdint>

#include "os/Clock.h"
#include "os/VirtualClock.h"

namespace testsupport {

class ScopedVirtualClock {
public:
    // 2023-11-14 22:13:20 UTC: a fixed instant, so that times in reports are reproducible.
    static constexpr uint64_t kDefaultStartUtcMs = 1'700'000'000'000;

    explicit ScopedVirtualClock(uint64_t startUtcMs = kDefaultStartUtcMs, uint64_t startTickMs = 0)
        : clock_(startUtcMs, startTickMs), previous_(&os::clock()) {
        os::installClock(&clock_);
    }
    ~ScopedVirtualClock() { os::installClock(previous_); }
    ScopedVirtualClock(const ScopedVirtualClock&) = delete;
    ScopedVirtualClock& operator=(const ScopedVirtualClock&) = delete;

    os::VirtualClock& clock() { return clock_; }
    uint64_t elapsedMilliseconds() { return clock_.elapsedMilliseconds(); }
    void advance(uint64_t milliseconds) { clock_.advance(milliseconds); }

private:
    os::VirtualClock clock_;
    os::Clock* previous_;
};

}  // namespace testsupport

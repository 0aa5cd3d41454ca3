// os::VirtualClock: a clock for tests in which time only moves when the program waits.
//
// Scheme (discrete events): every participant thread runs until it sleeps or waits in the clock.
// Virtual time moves only when every participant is blocked in the clock; it then jumps to the
// earliest wake time. Participants are the thread that uses the clock first (the test thread,
// counted from construction) plus every running os::Thread. With that one thread alone,
// sleep(ms) returns at once with time advanced by ms.
//
// At one instant, sleepers due at that instant run before timed waits expire: a wait whose
// deadline is T reports "signalled" when another thread, woken at T, signals the object (or
// finishes) before blocking again. This makes "worker polls every 1000 ms while the caller
// waits in 1000 ms slices" come out the same on every run.
//
// Never hangs in virtual time: when every participant waits without a deadline and nobody
// sleeps, those waits give up and return false (nothing could ever signal them).
// A thread that blocks outside the clock (I/O, a mutex) counts as running: time stands still
// until it returns to the clock or finishes.
//
// REQUIRES: every os::Thread started while it was installed is joined (or destroyed) before
// the clock is uninstalled and destroyed.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "os/Clock.h"
#include "os/Export.h"

namespace os {

class OS_API VirtualClock final : public Clock {
public:
    // `startUtcMilliseconds`: the wall-clock instant (ms since 1970 UTC) the clock starts at.
    // `startTickMilliseconds`: the monotonic reading at that instant (so tick wrap can be tested).
    explicit VirtualClock(uint64_t startUtcMilliseconds, uint64_t startTickMilliseconds = 0);
    ~VirtualClock() override;
    VirtualClock(const VirtualClock&) = delete;
    VirtualClock& operator=(const VirtualClock&) = delete;

    uint64_t nowMilliseconds() override;
    uint64_t monotonicMilliseconds() override;
    void sleep(uint32_t milliseconds) override;
    bool wait(Waitable& object, uint32_t timeoutMs) override;
    void threadStarted() override;
    void threadFinished() override;
    void objectSignalled() override;

    // Lets `milliseconds` of virtual time pass for the calling thread: the same as sleep, so a
    // simulated device charging time for an operation lets other threads' deadlines fall
    // inside that time in order.
    void advance(uint64_t milliseconds);
    // Milliseconds of virtual time since construction.
    uint64_t elapsedMilliseconds();

private:
    struct Blocked;
    void blockUntilReleased(Blocked& entry, std::unique_lock<std::mutex>& lock);
    void schedule();
    void release(Blocked& entry, bool signalled);

    std::mutex mutex_;
    std::condition_variable released_;
    const uint64_t startUtc_;
    const uint64_t startTick_;
    uint64_t elapsed_ = 0;
    int participants_ = 1;
    std::vector<Blocked*> blocked_;
};

}  // namespace os

// Objects a thread can wait on through the clock: the base class and a manual-reset event.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "os/Export.h"

namespace os {

// Something that becomes signalled once and may be waited for with os::waitFor().
// A virtual clock only ever asks isSignalled(); the real clock blocks in waitReal().
class OS_API Waitable {
public:
    virtual ~Waitable();
    // True while signalled. Must not block; called with the clock's lock held.
    virtual bool isSignalled() const = 0;
    // Blocks in real time until signalled or `timeoutMs` (kInfinite: no limit) passes.
    // Returns true when signalled.
    virtual bool waitReal(uint32_t timeoutMs) = 0;
};

// A manual-reset event: set() signals it until reset().
class OS_API Event final : public Waitable {
public:
    explicit Event(bool initiallySet = false);
    // Signals the event and lets every wait on it end (also waits through a virtual clock).
    void set();
    void reset();
    bool isSignalled() const override;
    bool waitReal(uint32_t timeoutMs) override;

private:
    std::atomic<bool> signalled_;
    std::mutex mutex_;
    std::condition_variable changed_;
};

}  // namespace os

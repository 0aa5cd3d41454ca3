// The one clock of the process. Every sleep, timed wait and reading of the time in the platform
// layer (and so in the library) goes through the installed Clock. Production uses the real clock;
// tests install a VirtualClock in which sleeping and waiting advance time at once.
#pragma once

#include <cstdint>

#include "os/Export.h"

namespace os {

// A timeout meaning "wait until signalled", as INFINITE does for WaitForSingleObject.
inline constexpr uint32_t kInfinite = 0xFFFFFFFFu;

// A wall-clock instant split the way the library reads it.
struct TimeOfDay {
    uint64_t seconds = 0;       // seconds since 1970-01-01 00:00:00 UTC
    uint32_t milliseconds = 0;  // 0..999
};

// Local calendar time, as GetLocalTime reports it (month 1..12, dayOfWeek 0 = Sunday).
struct LocalTime {
    uint16_t year = 0, month = 0, dayOfWeek = 0, day = 0;
    uint16_t hour = 0, minute = 0, second = 0, milliseconds = 0;
};

class Waitable;

class OS_API Clock {
public:
    virtual ~Clock();
    // Milliseconds since 1970-01-01 UTC.
    virtual uint64_t nowMilliseconds() = 0;
    // Milliseconds since an arbitrary start, for tick counts (wraps at 2^32 in tickCount()).
    virtual uint64_t monotonicMilliseconds() = 0;
    virtual void sleep(uint32_t milliseconds) = 0;
    // Waits until `object` is signalled or `timeoutMs` (kInfinite: no limit) passes on this
    // clock. Returns true when signalled, false on timeout.
    virtual bool wait(Waitable& object, uint32_t timeoutMs) = 0;
    // Worker threads tell the clock when they start and end so a virtual clock knows who may
    // still advance time. os::Thread calls these; threadStarted runs on the creating thread
    // before the worker exists, threadFinished on the worker as its last act.
    virtual void threadStarted() {}
    virtual void threadFinished() {}
    // A Waitable calls this after it became signalled, so that waits on it can end.
    virtual void objectSignalled() {}
};

// The installed clock; the real clock until installClock() is called.
OS_API Clock& clock();
// Installs `c` (nullptr restores the real clock); `c` is not owned and must outlive its
// installation. REQUIRES: no sleep or wait is in progress and no os::Thread is running.
OS_API void installClock(Clock* c);

// Convenience over the installed clock.
OS_API TimeOfDay timeOfDay();
OS_API uint64_t nowMilliseconds();
OS_API uint32_t tickCount();  // GetTickCount semantics: milliseconds, wraps at 2^32
// The clock's current instant in the local time zone of the process.
OS_API LocalTime localTime();
OS_API void sleepMilliseconds(uint32_t milliseconds);
// Waits on `object` through the installed clock; true when signalled, false on timeout.
OS_API bool waitFor(Waitable& object, uint32_t timeoutMs);

}  // namespace os

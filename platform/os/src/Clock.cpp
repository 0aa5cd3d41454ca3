#include "os/Clock.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "LocalTimeConversion.h"
#include "os/Waitable.h"

namespace os {
namespace {

class RealClock final : public Clock {
public:
    uint64_t nowMilliseconds() override {
        using namespace std::chrono;
        return static_cast<uint64_t>(
            duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
    }
    uint64_t monotonicMilliseconds() override {
        using namespace std::chrono;
        return static_cast<uint64_t>(
            duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
    }
    void sleep(uint32_t milliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
    bool wait(Waitable& object, uint32_t timeoutMs) override { return object.waitReal(timeoutMs); }
};

RealClock& realClock() {
    static RealClock instance;
    return instance;
}

std::atomic<Clock*> installed{nullptr};

}  // namespace

Clock::~Clock() = default;

Clock& clock() {
    Clock* c = installed.load(std::memory_order_acquire);
    return c != nullptr ? *c : realClock();
}

void installClock(Clock* c) { installed.store(c, std::memory_order_release); }

TimeOfDay timeOfDay() {
    const uint64_t ms = clock().nowMilliseconds();
    return TimeOfDay{ms / 1000, static_cast<uint32_t>(ms % 1000)};
}

uint64_t nowMilliseconds() { return clock().nowMilliseconds(); }

uint32_t tickCount() { return static_cast<uint32_t>(clock().monotonicMilliseconds()); }

LocalTime localTime() { return detail::toLocalTime(clock().nowMilliseconds()); }

void sleepMilliseconds(uint32_t milliseconds) { clock().sleep(milliseconds); }

bool waitFor(Waitable& object, uint32_t timeoutMs) { return clock().wait(object, timeoutMs); }

}  // namespace os

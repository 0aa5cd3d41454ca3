#include <chrono>

#include "os/Clock.h"
#include "os/Waitable.h"

namespace os {

Waitable::~Waitable() = default;

Event::Event(bool initiallySet) : signalled_(initiallySet) {}

void Event::set() {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        signalled_ = true;
    }
    changed_.notify_all();
    clock().objectSignalled();
}

void Event::reset() {
    std::lock_guard<std::mutex> lock(mutex_);
    signalled_ = false;
}

bool Event::isSignalled() const { return signalled_.load(); }

bool Event::waitReal(uint32_t timeoutMs) {
    std::unique_lock<std::mutex> lock(mutex_);
    auto isSet = [this] { return signalled_.load(); };
    if (timeoutMs == kInfinite) {
        changed_.wait(lock, isSet);
        return true;
    }
    return changed_.wait_for(lock, std::chrono::milliseconds(timeoutMs), isSet);
}

}  // namespace os

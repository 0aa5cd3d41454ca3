#include "os/VirtualClock.h"

#include <algorithm>
#include <optional>

#include "os/Waitable.h"

namespace os {

// One thread blocked in the clock: a sleeper (object == nullptr) or a wait.
struct VirtualClock::Blocked {
    bool hasDeadline = true;
    uint64_t wakeAt = 0;  // elapsed_ at which the sleep ends or the wait times out
    Waitable* object = nullptr;
    bool released = false;
    bool signalled = false;
};

VirtualClock::VirtualClock(uint64_t startUtcMilliseconds, uint64_t startTickMilliseconds)
    : startUtc_(startUtcMilliseconds), startTick_(startTickMilliseconds) {}

VirtualClock::~VirtualClock() = default;

uint64_t VirtualClock::nowMilliseconds() {
    std::lock_guard<std::mutex> lock(mutex_);
    return startUtc_ + elapsed_;
}

uint64_t VirtualClock::monotonicMilliseconds() {
    std::lock_guard<std::mutex> lock(mutex_);
    return startTick_ + elapsed_;
}

uint64_t VirtualClock::elapsedMilliseconds() {
    std::lock_guard<std::mutex> lock(mutex_);
    return elapsed_;
}

void VirtualClock::sleep(uint32_t milliseconds) { advance(milliseconds); }

void VirtualClock::advance(uint64_t milliseconds) {
    std::unique_lock<std::mutex> lock(mutex_);
    Blocked entry;
    entry.wakeAt = elapsed_ + milliseconds;
    blockUntilReleased(entry, lock);
}

bool VirtualClock::wait(Waitable& object, uint32_t timeoutMs) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (object.isSignalled()) {
        return true;
    }
    Blocked entry;
    entry.hasDeadline = timeoutMs != kInfinite;
    entry.wakeAt = elapsed_ + timeoutMs;
    entry.object = &object;
    blockUntilReleased(entry, lock);
    return entry.signalled;
}

void VirtualClock::threadStarted() {
    std::lock_guard<std::mutex> lock(mutex_);
    ++participants_;
}

void VirtualClock::threadFinished() {
    std::lock_guard<std::mutex> lock(mutex_);
    --participants_;
    schedule();
}

void VirtualClock::objectSignalled() {
    std::lock_guard<std::mutex> lock(mutex_);
    schedule();
}

void VirtualClock::blockUntilReleased(Blocked& entry, std::unique_lock<std::mutex>& lock) {
    blocked_.push_back(&entry);
    schedule();
    released_.wait(lock, [&entry] { return entry.released; });
}

void VirtualClock::release(Blocked& entry, bool signalled) {
    entry.released = true;
    entry.signalled = signalled;
}

// Called with mutex_ held whenever a thread blocks, a thread ends or an object is signalled.
void VirtualClock::schedule() {
    bool releasedAny = false;
    for (Blocked* entry : blocked_) {
        if (entry->object != nullptr && entry->object->isSignalled()) {
            release(*entry, true);
            releasedAny = true;
        }
    }
    std::erase_if(blocked_, [](const Blocked* entry) { return entry->released; });

    const bool everyoneBlocked = static_cast<int>(blocked_.size()) >= participants_;
    if (everyoneBlocked && !blocked_.empty()) {
        std::optional<uint64_t> next;
        for (const Blocked* entry : blocked_) {
            if (entry->hasDeadline && (!next || entry->wakeAt < *next)) {
                next = entry->wakeAt;
            }
        }
        if (!next) {
            // Every thread waits for something only another waiting thread could do.
            for (Blocked* entry : blocked_) {
                release(*entry, false);
            }
        } else {
            elapsed_ = std::max(elapsed_, *next);
            auto dueSleeper = [this](const Blocked* e) {
                return e->object == nullptr && e->wakeAt <= elapsed_;
            };
            // Sleepers first: what they do at this instant may still signal a waited object.
            const bool sleepersDue = std::any_of(blocked_.begin(), blocked_.end(), dueSleeper);
            for (Blocked* entry : blocked_) {
                const bool due = entry->hasDeadline && entry->wakeAt <= elapsed_;
                if (sleepersDue ? dueSleeper(entry) : due) {
                    release(*entry, false);
                }
            }
        }
        std::erase_if(blocked_, [](const Blocked* entry) { return entry->released; });
        releasedAny = true;
    }
    if (releasedAny) {
        released_.notify_all();
    }
}

}  // namespace os

#include "storage/AutoRun.h"

#include <atomic>

namespace libStorage {
namespace {
std::atomic<int> disablingObjects{0};
}  // namespace

AutoRun::~AutoRun() { Disable(false); }

AutoRun::AutoRun(const AutoRun& other) { Disable(other.disabled_); }

AutoRun& AutoRun::operator=(const AutoRun& other) {
    Disable(other.disabled_);
    return *this;
}

void AutoRun::Disable(bool disable) {
    if (disable == disabled_) {
        return;
    }
    disabled_ = disable;
    disablingObjects.fetch_add(disable ? 1 : -1);
}

bool AutoRun::autoPlaySuppressed() { return disablingObjects.load() > 0; }

}  // namespace libStorage

#include "kiv/KIVLocale.h"

#include <mutex>

namespace {

std::mutex& globalMutex() {
    static std::mutex mutex;
    return mutex;
}

KIVLocale& globalLocale() {
    static KIVLocale locale(L"en_US");
    return locale;
}

}  // namespace

KIVLocale::KIVLocale(kiv::String name) : name_(std::move(name)) {}

KIVLocale KIVLocale::getGlobal() {
    std::lock_guard<std::mutex> lock(globalMutex());
    return globalLocale();
}

void KIVLocale::setGlobal(const KIVLocale& locale) {
    std::lock_guard<std::mutex> lock(globalMutex());
    globalLocale() = locale;
}

#include "quel5/Host.h"

#include "HostAccess.h"

namespace quel5 {

namespace {

// Constant-initialised, so it is valid before any static initialiser of any module runs.
Host* g_installedHost = nullptr;

}  // namespace

Host::~Host() = default;

std::recursive_mutex& detail::deliveryMutex() {
    // Never destroyed: libraries may still report from their static destructors at exit.
    static auto* mutex = new std::recursive_mutex;
    return *mutex;
}

Host* detail::currentHost() { return g_installedHost; }

void installHost(Host* host) {
    std::lock_guard<std::recursive_mutex> lock(detail::deliveryMutex());
    g_installedHost = host;
}

Host* installedHost() {
    std::lock_guard<std::recursive_mutex> lock(detail::deliveryMutex());
    return g_installedHost;
}

}  // namespace quel5

#include "host/StopRequest.h"

#include <atomic>
#include <csignal>

namespace host {
namespace {

std::atomic<bool> g_stop{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

void onInterrupt(int) {
    g_stop.store(true);
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace

void installInterruptHandler() { std::signal(SIGINT, onInterrupt); }
void removeInterruptHandler() { std::signal(SIGINT, SIG_DFL); }

bool stopRequested() { return g_stop.load(); }
void requestStop() { g_stop.store(true); }
void clearStopRequest() { g_stop.store(false); }

}  // namespace host

#include <signal.h>

#include "cli/StopFlag.h"
#include "cli/StopRequest.h"

namespace host {
namespace {

// Each asks for a stop: Ctrl-C, a polite kill (systemd, timeout, kill), a closed terminal or SSH
// session, and Ctrl-\.
constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

void onStopSignal(int number) {
    stopFlag().store(true);
    // The next one of this kind takes its default action: ends the process at once.
    struct sigaction fallback {};
    fallback.sa_handler = SIG_DFL;
    sigemptyset(&fallback.sa_mask);
    sigaction(number, &fallback, nullptr);
}

void setAction(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    // Reads and writes in progress resume instead of failing with EINTR.
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

}  // namespace

void installInterruptHandler() {
    for (int number : kStopSignals) setAction(number, onStopSignal);
    setAction(SIGPIPE, SIG_IGN);
}

void removeInterruptHandler() {
    for (int number : kStopSignals) setAction(number, SIG_DFL);
    setAction(SIGPIPE, SIG_DFL);
}

}  // namespace host

#include <windows.h>

#include <atomic>
#include <csignal>

#include "cli/StopFlag.h"
#include "cli/StopRequest.h"

namespace host {
namespace {

// The system ends the process about 5 s after a close event and 5 to 20 s after logoff or
// shutdown; waiting a little less lets the test's write-back finish whenever it can.
constexpr DWORD kGraceMs = 4500;

std::atomic<bool> g_interrupted{false};
HANDLE g_runDone = nullptr;

BOOL WINAPI onConsoleEvent(DWORD event) {
    switch (event) {
        case CTRL_C_EVENT:
        case CTRL_BREAK_EVENT:
            if (g_interrupted.exchange(true)) {
                return FALSE;  // the second: the default handler ends the process at once
            }
            stopFlag().store(true);
            return TRUE;
        case CTRL_CLOSE_EVENT:
        case CTRL_LOGOFF_EVENT:
        case CTRL_SHUTDOWN_EVENT:
            // The process ends when this returns: hold it until the run has written its data back.
            stopFlag().store(true);
            if (g_runDone != nullptr) WaitForSingleObject(g_runDone, kGraceMs);
            return TRUE;
        default:
            return FALSE;
    }
}

// A SIGINT raised inside the process (raise(), the C runtime) rather than by the console.
void onRaisedInterrupt(int number) {
    g_interrupted.store(true);
    stopFlag().store(true);
    std::signal(number, SIG_DFL);
}

}  // namespace

void installInterruptHandler() {
    // Before the console handler: the one registered last is asked first.
    std::signal(SIGINT, onRaisedInterrupt);
    g_interrupted.store(false);
    if (g_runDone == nullptr) g_runDone = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (g_runDone != nullptr) ResetEvent(g_runDone);
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

void removeInterruptHandler() {
    if (g_runDone != nullptr) SetEvent(g_runDone);
    SetConsoleCtrlHandler(onConsoleEvent, FALSE);
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace host

// The framework host and the stop-signal handlers, installed for one run.
#pragma once

#include "cli/ConsoleHost.h"
#include "cli/StopRequest.h"
#include "quel5/Host.h"

namespace host {

class RunScope {
public:
    explicit RunScope(ConsoleHost& host) {
        quel5::installHost(&host);
        clearStopRequest();
        installInterruptHandler();
    }
    ~RunScope() {
        removeInterruptHandler();
        quel5::installHost(nullptr);
    }
    RunScope(const RunScope&) = delete;
    RunScope& operator=(const RunScope&) = delete;
};

}  // namespace host

// drivediag as a function, so that tests can run it in-process with captured output.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace host {

struct Console {
    std::ostream& out;  // reports, results, lists
    std::ostream& err;  // errors about the command itself
    bool terminal;      // out is a terminal: redraw the progress line in place
};

// Runs the command in `args` (the arguments after the program name) and returns the process's
// exit code (host/ExitCodes.h). Installs the framework host, the Ctrl-C handler and log sinks
// only for the duration of a run. Not re-entrant.
int runDrivediag(const std::vector<std::string>& args, const Console& console);

}  // namespace host

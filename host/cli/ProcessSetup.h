// What drivediag does before anything else: prepares the process for the platform and takes
// its arguments. ProcessSetup_linux.cpp / ProcessSetup_windows.cpp.
#pragma once

#include <string>
#include <vector>

namespace host {

// Windows: the console shows UTF-8 (what drivediag writes), and a drive without a medium
// answers "not ready" instead of stopping the program with a dialog. Returns the arguments
// after the program name as UTF-8: on Windows taken from the wide command line (argv is in
// the ANSI code page, which cannot hold every path), elsewhere argv as given.
std::vector<std::string> startProcess(int argc, char** argv);

}  // namespace host

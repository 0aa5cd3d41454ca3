#include <iostream>
#include <string>
#include <vector>

#include "cli/Drivediag.h"
#include "cli/ProcessSetup.h"
#include "cli/Terminal.h"

int main(int argc, char** argv) {
    const std::vector<std::string> args = host::startProcess(argc, argv);
    return host::runDrivediag(args, {std::cout, std::cerr, host::standardOutputIsTerminal()});
}

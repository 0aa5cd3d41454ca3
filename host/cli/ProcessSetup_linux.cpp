#include "cli/ProcessSetup.h"

namespace host {

std::vector<std::string> startProcess(int argc, char** argv) {
    return std::vector<std::string>(argv + 1, argv + argc);
}

}  // namespace host

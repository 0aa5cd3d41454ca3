#include <cstdlib>
#include <string>

#include "cli/UndoLocation.h"

namespace host {

std::string stateDirectory() {
    const char* state = std::getenv("XDG_STATE_HOME");
    // The base directory rules ignore a relative path.
    if (state != nullptr && state[0] == '/') return std::string(state) + "/drivediag";
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] == '\0') return "";
    return std::string(home) + "/.local/state/drivediag";
}

}  // namespace host

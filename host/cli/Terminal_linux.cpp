#include <unistd.h>

#include "cli/Terminal.h"

namespace host {

bool standardOutputIsTerminal() { return isatty(STDOUT_FILENO) == 1; }

}  // namespace host

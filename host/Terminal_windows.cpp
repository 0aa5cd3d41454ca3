#include <io.h>
#include <stdio.h>

#include "host/Terminal.h"

namespace host {

bool standardOutputIsTerminal() { return _isatty(_fileno(stdout)) != 0; }

}  // namespace host

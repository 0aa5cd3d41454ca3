#include <windows.h>

#include "cli/Terminal.h"

namespace host {

// _isatty answers true for any character device, NUL included; only a console has a mode.
bool standardOutputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

}  // namespace host

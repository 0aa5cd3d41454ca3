// Where a destructive run keeps its undo journal.
#pragma once

#include <optional>
#include <string>

namespace host {

// The folder for journals when no log file names one: $XDG_STATE_HOME/drivediag, else
// ~/.local/state/drivediag on Linux; %LOCALAPPDATA%\drivediag on Windows. "" when the
// environment names none. UndoLocation_linux.cpp / UndoLocation_windows.cpp.
std::string stateDirectory();

// The journal of a run on `devicePath` (UTF-8): `chosen` (--undo) when given, else a file named
// after the device in the folder of `logFile` (--log), else in stateDirectory(). "" when there
// is nowhere to put it.
std::string undoJournalPath(const std::optional<std::string>& chosen,
                            const std::optional<std::string>& logFile,
                            const std::string& devicePath);

}  // namespace host

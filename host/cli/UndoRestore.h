// `drivediag restore FILE [--device DEV] [--json]`: puts back on the device every undo-journal
// record not marked done, newest first, then reads each back and compares.
#pragma once

#include "cli/CommandLine.h"
#include "cli/Drivediag.h"

namespace host {

// REQUIRES: line.command is Restore and line.files holds the journal. Returns the exit code:
// 0 (everything put back and read back equal; the journal is removed), kExitNoDevice (journal
// or device cannot be opened), kExitUndoJournal (not a journal, or the device has another size
// or sector size: nothing is written), 8 (the device is in use), kExitRestoreFailed (some
// sectors could not be written or read back different; the journal is kept).
int restoreCommand(const CommandLine& line, const Console& console);

}  // namespace host

// drivediag's exit codes: one per test result, and a few for runs that never reached a result.
#pragma once

#include <span>
#include <string_view>

#include "quel5/TestResult.h"

namespace host {

inline constexpr int kExitUsage = 64;        // bad command line, test, parameter or device text
inline constexpr int kExitUndoJournal = 65;  // an undo journal in the way, unreadable or unfitting
inline constexpr int kExitNoDevice = 66;     // the device could not be opened
inline constexpr int kExitSoftware = 70;     // the test ended with an exception
inline constexpr int kExitReportFile = 73;  // --bad-blocks, --metrics or --map could not be written
inline constexpr int kExitRestoreFailed = 74;  // restore: data not put back or read back different
inline constexpr int kExitReadOnly = 77;       // a destructive test on a device that refuses writes

struct ExitCodeRow {
    int code;
    std::string_view meaning;
};

// Every exit code with what it means, in increasing order (shown by --help).
std::span<const ExitCodeRow> exitCodeTable();

// The exit code of a run that ended with `result`.
int exitCodeFor(const quel5::TestResult& result);

}  // namespace host

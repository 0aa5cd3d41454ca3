// The undo journal around one destructive run of drivediag: started before the test writes,
// ended after it, kept (and said so) when the device still needs data put back.
#pragma once

#include <memory>
#include <string>

#include "cli/Drivediag.h"
#include "drives/BlockDeviceDrive.h"
#include "drives/UndoJournal.h"

namespace host {

class RunJournal {
public:
    // Journals every write of `drive` into a new file at `path` (UTF-8; its folder is created).
    // nullptr with a reason in *error when a file is already there (an earlier run's journal,
    // perhaps awaiting `drivediag restore`) or the journal cannot be created. `drive` must
    // outlive the RunJournal.
    static std::unique_ptr<RunJournal> start(const std::string& path, BlockDeviceDrive& drive,
                                             std::string* error);
    // Detaches from the drive; keeps the file when finish() was not called and records remain.
    ~RunJournal();
    RunJournal(const RunJournal&) = delete;
    RunJournal& operator=(const RunJournal&) = delete;

    // Ends journaling. Removes the file when the device holds all its data again; otherwise
    // keeps it and tells the person (on console.err, and as a JSON line of type "undoJournal"
    // on console.out with `json`) how to restore. Returns true when the file was removed.
    bool finish(const Console& console, bool json);

private:
    RunJournal(std::unique_ptr<UndoJournal> journal, BlockDeviceDrive& drive);

    std::unique_ptr<UndoJournal> journal_;
    BlockDeviceDrive& drive_;
};

}  // namespace host

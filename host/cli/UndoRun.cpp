#include "cli/UndoRun.h"

#include <filesystem>
#include <system_error>

#include "cli/Json.h"
#include "drives/Utf8Path.h"

namespace host {

std::unique_ptr<RunJournal> RunJournal::start(const std::string& path, BlockDeviceDrive& drive,
                                              std::string* error) {
    const std::filesystem::path file = pathFromUtf8(path);
    std::error_code problem;
    if (std::filesystem::exists(file, problem)) {
        *error = "an undo journal is already at " + path +
                 " (from a run that did not end cleanly?); put its data back with "
                 "'drivediag restore " +
                 path + "', or choose another file with --undo";
        return nullptr;
    }
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), problem);
    undo::Header header;
    header.devicePath = drive.path();
    header.totalSectors = drive.GetTotalSectors();
    header.sectorSize = drive.GetBytesPerSector();
    std::string why;
    std::unique_ptr<UndoJournal> journal = UndoJournal::create(path, header, &why);
    if (!journal) {
        *error = "cannot start the undo journal: " + why;
        return nullptr;
    }
    return std::unique_ptr<RunJournal>(new RunJournal(std::move(journal), drive));
}

RunJournal::RunJournal(std::unique_ptr<UndoJournal> journal, BlockDeviceDrive& drive)
    : journal_(std::move(journal)), drive_(drive) {
    drive_.attachUndoJournal(journal_.get());
}

RunJournal::~RunJournal() { drive_.attachUndoJournal(nullptr); }

bool RunJournal::finish(const Console& console, bool json) {
    drive_.attachUndoJournal(nullptr);
    const std::size_t pending = journal_->pendingRecords();
    if (journal_->finish()) return true;
    const std::string& path = journal_->path();
    console.err << "drivediag: " << pending << " area(s) of " << drive_.path()
                << " may not hold their own data again; it is kept in the undo journal " << path
                << ". Put it back with: drivediag restore " << path << "\n";
    if (json) {
        console.out << JsonObject::record("undoJournal")
                           .text("file", path)
                           .text("device", drive_.path())
                           .number("pendingRecords", pending)
                           .str()
                    << "\n";
    }
    return false;
}

}  // namespace host

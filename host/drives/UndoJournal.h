// host::UndoJournal: before a destructive test overwrites sectors, their contents go to a file
// and reach its medium, so that `drivediag restore` can put them back after a crash, a kill or
// a power cut. The file's format is in host/UndoJournalFormat.h.
//
// The journal follows what is written: a write that puts back exactly what a record holds
// leaves those sectors clean. Once the device has been flushed, the records whose sectors are
// all clean are marked done (or, when every record is, the file is cut back to its header).
// When writes walk upward (one after the other, or a stride of up to 4 MiB apart), each new
// record reaches further ahead (up to 4 MiB), so a sweep pays for one flush of the journal per
// few MiB instead of one per write.
//
// Not thread-safe; the drive that writes calls it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "drives/DurableFile.h"
#include "drives/UndoJournalFormat.h"

namespace host {

class UndoJournal {
public:
    // How the journal reaches the device it protects.
    struct DeviceAccess {
        // Reads `count` sectors from `first` as the device holds them now (not from any cache
        // of earlier reads) into `into`. False with a reason in *error.
        std::function<bool(uint64_t first, uint32_t count, unsigned char* into, std::string* error)>
            read;
        // Commits every completed write to the device's medium.
        std::function<bool(std::string* error)> flush;
    };

    // Creates the journal at `path` (UTF-8; the file must not exist) and makes its header
    // durable. nullptr with a reason in *error.
    static std::unique_ptr<UndoJournal> create(const std::string& path, const undo::Header& header,
                                               std::string* error);
    // finish(), unless it was called.
    ~UndoJournal();
    UndoJournal(const UndoJournal&) = delete;
    UndoJournal& operator=(const UndoJournal&) = delete;

    // REQUIRES: called before the first beforeOverwrite().
    void bind(DeviceAccess access) { access_ = std::move(access); }

    // Before sectors [first, first + count) are overwritten: journals those no record holds yet
    // and returns once the journal is on its medium. False (with a reason in *error) when their
    // contents could not be read or journaled: the write must not happen.
    bool beforeOverwrite(uint64_t first, uint32_t count, std::string* error);
    // After the write of `data` (count x sector size bytes) to [first, first + count):
    // `succeeded` says whether the device took it whole.
    void afterWrite(uint64_t first, uint32_t count, const unsigned char* data, bool succeeded);
    // The device has committed every completed write: records whose sectors are all clean are
    // marked done. False with a reason in *error when the journal cannot be updated (it then
    // keeps the records, which is safe).
    bool deviceFlushed(std::string* error);

    // Records the device still needs put back: not all their sectors are clean, or they were
    // not marked done since (no flush of the device confirmed them).
    std::size_t pendingRecords() const { return index_.size(); }
    const std::string& path() const { return path_; }

    // Closes the journal. Without pending records the file is removed and finish() returns
    // true; otherwise it is kept for `drivediag restore` and finish() returns false.
    bool finish();

private:
    struct Entry {
        uint64_t id = 0;
        uint32_t count = 0;
        std::vector<unsigned char> original;
        std::vector<bool> dirty;  // per sector: holds something other than `original`
        uint32_t dirtyCount = 0;
    };

    UndoJournal(std::string path, undo::Header header, std::unique_ptr<DurableFile> file,
                uint64_t headerBytes);
    // The first uncovered sector at or after `from` and before `end`, and the end of that gap.
    bool nextGap(uint64_t from, uint64_t end, uint64_t* gapStart, uint64_t* gapEnd) const;
    bool journal(uint64_t first, uint32_t count, std::string* error);
    uint64_t nextEntryStart(uint64_t from) const;

    std::string path_;
    undo::Header header_;
    std::unique_ptr<DurableFile> file_;
    uint64_t headerBytes_;
    DeviceAccess access_;
    std::map<uint64_t, Entry> index_;  // by first sector; the entries never overlap
    uint64_t nextId_ = 1;
    uint64_t heldBytes_ = 0;
    uint64_t lastRecordStart_ = 0;
    uint64_t lastRecordEnd_ = UINT64_MAX;
    bool finished_ = false;
};

}  // namespace host

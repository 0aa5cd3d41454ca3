// The block-device drive's side of the undo journal: where the journal reads the sectors it
// saves and how it flushes the device.
#include "drives/BlockDeviceDrive.h"
#include "drives/UndoJournal.h"

namespace host {

void BlockDeviceDrive::attachUndoJournal(UndoJournal* journal) {
    undo_ = journal;
    if (journal == nullptr) return;
    journal->bind({
        [this](uint64_t first, uint32_t count, unsigned char* into, std::string* error) {
            return readFromDevice(first, count, into, error);
        },
        [this](std::string* error) {
            const os::Error flushed = flushWritten();
            if (!flushed.ok()) *error = path_ + ": " + flushed.message;
            return flushed.ok();
        },
    });
}

bool BlockDeviceDrive::readFromDevice(uint64_t first, uint32_t count, unsigned char* into,
                                      std::string* error) {
    // Not through read-ahead: a block read before the last write must never become the
    // original.
    const size_t bytes = size_t{count} * bytesPerSector_;
    const os::IoResult read = move(Direction::Read, first * bytesPerSector_, into, bytes);
    if (!read.error.ok()) {
        *error = path_ + " at sector " + std::to_string(first) + ": " + read.error.message;
        return false;
    }
    if (read.bytes != bytes) {
        *error = path_ + " ended within sectors " + std::to_string(first) + " + " +
                 std::to_string(count);
        return false;
    }
    return true;
}

void BlockDeviceDrive::confirmFlushToJournal() {
    std::string why;
    if (undo_ != nullptr && !undo_->deviceFlushed(&why)) {
        failed(path_ + ": the undo journal keeps its records: " + why, quel5::TestResult::PASS);
    }
}

}  // namespace host

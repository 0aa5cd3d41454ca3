#include "drives/UndoJournal.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "drives/Utf8Path.h"

namespace host {
namespace {

// The most one record holds, and so how far a record reaches ahead of an upward sweep.
constexpr uint64_t kLargestRecordBytes = 4 * 1024 * 1024;
// Original data kept in memory beyond this makes the journal flush the device and retire the
// clean records, which keeps memory and the file small on long runs.
constexpr uint64_t kCheckpointBytes = 32 * 1024 * 1024;

}  // namespace

std::unique_ptr<UndoJournal> UndoJournal::create(const std::string& path,
                                                 const undo::Header& header, std::string* error) {
    std::unique_ptr<DurableFile> file = createDurableFile(path, error);
    if (!file) return nullptr;
    const std::vector<unsigned char> encoded = undo::encodeHeader(header);
    if (!file->append(encoded.data(), encoded.size(), error) || !file->sync(error)) {
        file.reset();
        std::error_code ignored;
        std::filesystem::remove(pathFromUtf8(path), ignored);
        return nullptr;
    }
    return std::unique_ptr<UndoJournal>(
        new UndoJournal(path, header, std::move(file), encoded.size()));
}

UndoJournal::UndoJournal(std::string path, undo::Header header, std::unique_ptr<DurableFile> file,
                         uint64_t headerBytes)
    : path_(std::move(path)),
      header_(std::move(header)),
      file_(std::move(file)),
      headerBytes_(headerBytes) {}

UndoJournal::~UndoJournal() {
    if (!finished_) finish();
}

uint64_t UndoJournal::nextEntryStart(uint64_t from) const {
    const auto next = index_.lower_bound(from);
    return next == index_.end() ? header_.totalSectors : next->first;
}

bool UndoJournal::nextGap(uint64_t from, uint64_t end, uint64_t* gapStart, uint64_t* gapEnd) const {
    uint64_t at = from;
    while (at < end) {
        auto holder = index_.upper_bound(at);
        if (holder != index_.begin()) {
            --holder;
            if (holder->first + holder->second.count > at) {
                at = holder->first + holder->second.count;  // covered: skip past this record
                continue;
            }
        }
        *gapStart = at;
        *gapEnd = std::min(end, nextEntryStart(at));
        return true;
    }
    return false;
}

bool UndoJournal::beforeOverwrite(uint64_t first, uint32_t count, std::string* error) {
    const uint64_t end = first + count;
    uint64_t gapStart = 0;
    uint64_t gapEnd = 0;
    if (!nextGap(first, end, &gapStart, &gapEnd)) return true;  // every sector is journaled
    if (heldBytes_ > kCheckpointBytes && (!access_.flush(error) || !deviceFlushed(error))) {
        return false;
    }
    const uint64_t largest = std::max<uint64_t>(1, kLargestRecordBytes / header_.sectorSize);
    uint64_t at = first;
    while (nextGap(at, end, &gapStart, &gapEnd)) {
        uint64_t recordEnd = gapEnd;
        if (gapEnd == end && lastRecordEnd_ != UINT64_MAX && gapStart >= lastRecordEnd_ &&
            gapStart - lastRecordEnd_ <= largest) {
            // Writes walking upward, one after the other or a stride apart: reach twice as far
            // past this write as the last record began before it, up to the next record.
            const uint64_t reach = std::min(largest, 2 * (gapEnd - lastRecordStart_));
            recordEnd = std::max(gapEnd, std::min(gapStart + reach, nextEntryStart(gapStart)));
        }
        for (uint64_t piece = gapStart; piece < recordEnd;) {
            const auto sectors = static_cast<uint32_t>(std::min(largest, recordEnd - piece));
            if (!journal(piece, sectors, error)) return false;
            piece += sectors;
        }
        at = recordEnd;
    }
    return file_->sync(error);
}

bool UndoJournal::journal(uint64_t first, uint32_t count, std::string* error) {
    Entry entry;
    entry.id = nextId_++;
    entry.count = count;
    entry.original.resize(size_t{count} * header_.sectorSize);
    entry.dirty.assign(count, false);
    if (!access_.read(first, count, entry.original.data(), error)) return false;
    const std::vector<unsigned char> record =
        undo::encodeRecord(entry.id, first, count, entry.original.data(), entry.original.size());
    if (!file_->append(record.data(), record.size(), error)) return false;
    heldBytes_ += entry.original.size();
    lastRecordStart_ = first;
    lastRecordEnd_ = first + count;
    index_.emplace(first, std::move(entry));
    return true;
}

void UndoJournal::afterWrite(uint64_t first, uint32_t count, const unsigned char* data,
                             bool succeeded) {
    const uint64_t end = first + count;
    const uint32_t sectorSize = header_.sectorSize;
    auto holder = index_.upper_bound(first);
    if (holder != index_.begin()) --holder;
    for (; holder != index_.end() && holder->first < end; ++holder) {
        Entry& entry = holder->second;
        const uint64_t from = std::max(first, holder->first);
        const uint64_t to = std::min(end, holder->first + entry.count);
        for (uint64_t sector = from; sector < to; ++sector) {
            const uint64_t inEntry = sector - holder->first;
            // A failed write may have left anything there: only a whole write of the original
            // makes a sector clean.
            const bool clean =
                succeeded &&
                std::memcmp(data + (sector - first) * sectorSize,
                            entry.original.data() + inEntry * sectorSize, sectorSize) == 0;
            if (entry.dirty[inEntry] == clean) {
                entry.dirty[inEntry] = !clean;
                if (clean) {
                    --entry.dirtyCount;
                } else {
                    ++entry.dirtyCount;
                }
            }
        }
    }
}

bool UndoJournal::deviceFlushed(std::string* error) {
    const bool allClean = std::all_of(index_.begin(), index_.end(),
                                      [](const auto& held) { return held.second.dirtyCount == 0; });
    if (allClean) {
        index_.clear();
        heldBytes_ = 0;
        if (file_->size() == headerBytes_) return true;
        return file_->truncate(headerBytes_, error) && file_->sync(error);
    }
    for (auto held = index_.begin(); held != index_.end();) {
        if (held->second.dirtyCount != 0) {
            ++held;
            continue;
        }
        const std::vector<unsigned char> mark = undo::encodeDone(held->second.id);
        if (!file_->append(mark.data(), mark.size(), error)) return false;
        heldBytes_ -= held->second.original.size();
        held = index_.erase(held);
    }
    return file_->sync(error);
}

bool UndoJournal::finish() {
    finished_ = true;
    file_.reset();
    if (!index_.empty()) return false;
    std::error_code ignored;
    std::filesystem::remove(pathFromUtf8(path_), ignored);
    return true;
}

}  // namespace host

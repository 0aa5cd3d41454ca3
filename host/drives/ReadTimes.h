// host::ReadTimes: how long each read of a run took, kept compactly enough for a whole-disc map
// of a 16 TB drive: a count of reads per time class, the slowest reads, and per block of the
// device the slowest class any read of it fell in (4 bits a block, at most kMaxBlocks blocks).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// Time classes, slowest last; a failed read is worse than any time.
enum class TimeClass : uint8_t {
    Unread = 0,
    Under3ms,
    Under10ms,
    Under50ms,
    Under150ms,
    Under500ms,
    Over500ms,
    Failed,
};
inline constexpr std::size_t kTimeClasses = 8;

// The class of a read that took `ms` milliseconds, or Failed.
TimeClass timeClassOf(uint64_t ms, bool failed);

struct TimedRead {
    uint64_t sector = 0;  // first sector of the read
    uint64_t ms = 0;
    bool operator==(const TimedRead&) const = default;
};

class ReadTimes {
public:
    // Blocks the map keeps at most: 4 MiB of classes.
    static constexpr uint64_t kMaxBlocks = uint64_t{1} << 23;
    // Slowest reads kept.
    static constexpr std::size_t kSlowestKept = 10;

    // For a device of `totalSectors` sectors: blocks of the fewest sectors (a power of two)
    // that keep the block count within kMaxBlocks.
    explicit ReadTimes(uint64_t totalSectors);

    // A read of `sectors` sectors from `first` that took `ms` milliseconds of its own.
    void add(uint64_t first, uint64_t sectors, uint64_t ms, bool failed);

    // Reads per class; Unread counts nothing.
    const std::array<uint64_t, kTimeClasses>& histogram() const { return histogram_; }
    // The slowest successful reads, slowest first (ties: the earlier read first).
    const std::vector<TimedRead>& slowest() const { return slowest_; }

    uint64_t sectorsPerBlock() const { return sectorsPerBlock_; }
    uint64_t blockCount() const { return blocks_; }
    // The slowest class of block `index`; Unread when no read touched it.
    TimeClass blockClass(uint64_t index) const;

private:
    void raise(uint64_t block, TimeClass timeClass);

    uint64_t totalSectors_;
    uint64_t sectorsPerBlock_ = 1;
    uint64_t blocks_ = 0;
    std::vector<uint8_t> classes_;  // two blocks a byte, the lower-indexed one in the low half
    std::array<uint64_t, kTimeClasses> histogram_{};
    std::vector<TimedRead> slowest_;
};

}  // namespace host

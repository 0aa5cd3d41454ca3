// host::OperationRecord: what a concrete drive was asked to do during a run and what failed,
// kept by the drive itself so that a run's summary is true whatever the test's error rules
// made of it.
//
// Failed sectors are kept as runs of adjacent sectors; a failed transfer of many sectors counts
// all of them, since the device did not say which one it could not move.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace host {

// A run of adjacent sectors: first and count (count >= 1).
struct SectorRun {
    uint64_t first;
    uint64_t count;
    bool operator==(const SectorRun&) const = default;
};

// Sectors as a set of non-overlapping runs; adding a run that touches others merges them.
class SectorRuns {
public:
    // REQUIRES: count >= 1 and first + count does not wrap.
    void add(uint64_t first, uint64_t count);
    // In increasing order of first sector, adjacent runs merged.
    std::vector<SectorRun> runs() const;
    uint64_t sectorCount() const { return sectors_; }
    bool empty() const { return byFirst_.empty(); }

private:
    std::map<uint64_t, uint64_t> byFirst_;  // first sector -> one past the last
    uint64_t sectors_ = 0;
};

class OperationRecord {
public:
    enum class Kind { Read, Write };

    // One transfer of `sectors` sectors from `first` (a verify is a read) and whether it moved
    // them all.
    void add(Kind kind, uint64_t first, uint64_t sectors, bool succeeded);

    struct Tally {
        uint64_t operations = 0;
        uint64_t sectors = 0;  // sectors asked for, failed ones included
        uint64_t failedOperations = 0;
        SectorRuns failedSectors;
    };
    const Tally& reads() const { return reads_; }
    const Tally& writes() const { return writes_; }

private:
    Tally reads_;
    Tally writes_;
};

}  // namespace host

// Faults injected into single sectors of a simulated drive.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "quel5/TestResult.h"

namespace sim {

enum class SectorFault : uint8_t {
    ReadFails = 1,          // a read covering the sector answers FAIL
    ReadInternalError = 2,  // a read covering the sector answers INTERNALERROR
    WriteFails = 4,         // a write covering the sector answers FAIL
    Flaky = 8,              // every read after the first returns altered data
    Forgetful = 16,         // writes are accepted but the sector keeps its old content
};

class SectorFaults {
public:
    // A sector may carry several faults; adding one keeps the others.
    void add(uint64_t sector, SectorFault fault);
    void clear();

    // The result of a read of [first, first + count) when a sector in it fails: the fault of
    // the lowest failing sector decides (INTERNALERROR when it carries both read faults).
    std::optional<quel5::TestResult> readFailure(uint64_t first, uint64_t count) const;
    bool writeFails(uint64_t first, uint64_t count) const;
    bool has(uint64_t sector, SectorFault fault) const;

    // Alters `data` (one sector of `bytes`) as the flaky sector `sector` returns it on this
    // read: unchanged on its first read, then differently on each later one.
    void applyFlakyRead(uint64_t sector, uint8_t* data, uint32_t bytes);

private:
    // The first sector in [first, first + count) carrying any of `mask`, if there is one.
    std::optional<uint64_t> firstWith(uint64_t first, uint64_t count, uint8_t mask) const;

    std::map<uint64_t, uint8_t> faults_;
    std::map<uint64_t, uint32_t> flakyReads_;
};

}  // namespace sim

// Faults injected into sectors of a simulated drive, kept as spans so that a fault over a
// million sectors costs as little as one over a single sector.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "quel5/TestResult.h"

namespace sim {

enum class SectorFault : uint8_t {
    ReadFails,          // a read covering the sector answers FAIL
    ReadInternalError,  // a read covering the sector answers INTERNALERROR
    WriteFails,         // a write covering the sector answers FAIL
    Flaky,              // every read after the first returns altered data
    Forgetful,          // writes are accepted but the sector keeps its old content
};

class SectorFaults {
public:
    // A sector may carry several faults; adding one keeps the others.
    void add(uint64_t sector, SectorFault fault) { addSpan(sector, 1, fault); }
    // Gives `fault` to the `count` sectors from `first` (none when count is 0; the span ends at
    // the last 64-bit sector number at most). Overlapping and touching spans of one fault are
    // merged, so their number never exceeds the number of spans added.
    void addSpan(uint64_t first, uint64_t count, SectorFault fault);
    void clear();

    // The result of a read of [first, first + count) when a sector in it fails: the fault of
    // the lowest failing sector decides (INTERNALERROR when it carries both read faults).
    std::optional<quel5::TestResult> readFailure(uint64_t first, uint64_t count) const;
    bool writeFails(uint64_t first, uint64_t count) const;
    bool has(uint64_t sector, SectorFault fault) const;
    // Separate spans stored for `fault` after merging.
    std::size_t spanCount(SectorFault fault) const;

    // Alters `data` (one sector of `bytes`) as the flaky sector `sector` returns it on this
    // read: unchanged on its first read, then differently on each later one.
    void applyFlakyRead(uint64_t sector, uint8_t* data, uint32_t bytes);

private:
    // First sector -> one past the last, sorted, neither overlapping nor touching.
    using Spans = std::map<uint64_t, uint64_t>;

    static constexpr std::size_t kKinds = static_cast<std::size_t>(SectorFault::Forgetful) + 1;
    // The first sector in [first, first + count) carrying `fault`, if there is one.
    std::optional<uint64_t> firstWith(uint64_t first, uint64_t count, SectorFault fault) const;

    std::array<Spans, kKinds> spans_;
    std::map<uint64_t, uint32_t> flakyReads_;
};

}  // namespace sim

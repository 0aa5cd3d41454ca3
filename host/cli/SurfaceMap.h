// A picture of the surface: the blocks of a tested range in rows, left to right, each cell
// coloured by the slowest read time class of the blocks it holds, failed blocks black. It reads
// the same for a thousand blocks (a cell a block) and for ten million (at most kColumns x
// kColumns cells, each holding as many blocks as it takes).
#pragma once

#include <cstdint>
#include <vector>

#include "drives/ReadTimes.h"

namespace host {

class SurfaceMap {
public:
    static constexpr uint64_t kColumns = 100;

    // The cells of sectors [first, end) of a drive whose reads `times` holds.
    SurfaceMap(const ReadTimes& times, uint64_t first, uint64_t end);

    uint64_t columns() const { return kColumns; }
    uint64_t rows() const { return (cells_.size() + kColumns - 1) / kColumns; }
    uint64_t cellCount() const { return cells_.size(); }
    TimeClass cell(uint64_t index) const { return cells_[static_cast<std::size_t>(index)]; }
    // The first sector of cell `index`.
    uint64_t sectorOf(uint64_t index) const;
    uint64_t sectorsPerCell() const { return blocksPerCell_ * sectorsPerBlock_; }

private:
    uint64_t firstBlock_ = 0;
    uint64_t blocksPerCell_ = 1;
    uint64_t sectorsPerBlock_ = 1;
    std::vector<TimeClass> cells_;
};

}  // namespace host

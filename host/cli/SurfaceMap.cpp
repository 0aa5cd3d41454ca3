#include "cli/SurfaceMap.h"

#include <algorithm>

namespace host {
namespace {

constexpr uint64_t kMaxCells = SurfaceMap::kColumns * SurfaceMap::kColumns;

}  // namespace

SurfaceMap::SurfaceMap(const ReadTimes& times, uint64_t first, uint64_t end)
    : sectorsPerBlock_(times.sectorsPerBlock()) {
    if (end <= first) return;
    firstBlock_ = first / sectorsPerBlock_;
    const uint64_t endBlock = (end + sectorsPerBlock_ - 1) / sectorsPerBlock_;
    const uint64_t blocks = endBlock - firstBlock_;
    blocksPerCell_ = (blocks + kMaxCells - 1) / kMaxCells;
    cells_.reserve(static_cast<std::size_t>((blocks + blocksPerCell_ - 1) / blocksPerCell_));
    for (uint64_t block = firstBlock_; block < endBlock; block += blocksPerCell_) {
        TimeClass slowest = TimeClass::Unread;
        for (uint64_t b = block; b < std::min(block + blocksPerCell_, endBlock); ++b)
            slowest = std::max(slowest, times.blockClass(b));
        cells_.push_back(slowest);
    }
}

uint64_t SurfaceMap::sectorOf(uint64_t index) const {
    return (firstBlock_ + index * blocksPerCell_) * sectorsPerBlock_;
}

}  // namespace host

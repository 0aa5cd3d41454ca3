#include "drives/OperationRecord.h"

#include <algorithm>
#include <iterator>

namespace host {

void SectorRuns::add(uint64_t first, uint64_t count) {
    uint64_t begin = first;
    uint64_t end = first + count;
    // Swallow every run that overlaps or touches [begin, end), starting with the one before.
    auto it = byFirst_.upper_bound(begin);
    if (it != byFirst_.begin() && std::prev(it)->second >= begin) --it;
    while (it != byFirst_.end() && it->first <= end) {
        begin = std::min(begin, it->first);
        end = std::max(end, it->second);
        sectors_ -= it->second - it->first;
        it = byFirst_.erase(it);
    }
    byFirst_.emplace(begin, end);
    sectors_ += end - begin;
}

std::vector<SectorRun> SectorRuns::runs() const {
    std::vector<SectorRun> result;
    result.reserve(byFirst_.size());
    for (const auto& [begin, end] : byFirst_) result.push_back({begin, end - begin});
    return result;
}

void OperationRecord::add(Kind kind, uint64_t first, uint64_t sectors, bool succeeded) {
    Tally& tally = kind == Kind::Read ? reads_ : writes_;
    ++tally.operations;
    tally.sectors += sectors;
    if (succeeded) return;
    ++tally.failedOperations;
    if (sectors > 0) tally.failedSectors.add(first, sectors);
}

}  // namespace host

#include "sim/SectorFaults.h"

#include <algorithm>
#include <limits>

namespace sim {

void SectorFaults::addSpan(uint64_t first, uint64_t count, SectorFault fault) {
    if (count == 0) {
        return;
    }
    Spans& spans = spans_[static_cast<std::size_t>(fault)];
    uint64_t end = first + std::min(count, std::numeric_limits<uint64_t>::max() - first);
    // Swallow every span that overlaps or touches [first, end), widening the new one to cover
    // them, beginning with the one that starts at or before `first`.
    auto it = spans.upper_bound(first);
    if (it != spans.begin() && std::prev(it)->second >= first) {
        --it;
    }
    while (it != spans.end() && it->first <= end) {
        first = std::min(first, it->first);
        end = std::max(end, it->second);
        it = spans.erase(it);
    }
    spans.emplace(first, end);
}

void SectorFaults::clear() {
    for (Spans& spans : spans_) spans.clear();
    flakyReads_.clear();
}

std::optional<uint64_t> SectorFaults::firstWith(uint64_t first, uint64_t count,
                                                SectorFault fault) const {
    if (count == 0) {
        return std::nullopt;
    }
    const Spans& spans = spans_[static_cast<std::size_t>(fault)];
    auto it = spans.upper_bound(first);
    if (it != spans.begin() && std::prev(it)->second > first) {
        return first;  // inside a span that starts at or before `first`
    }
    if (it != spans.end() && it->first - first < count) {
        return it->first;
    }
    return std::nullopt;
}

bool SectorFaults::has(uint64_t sector, SectorFault fault) const {
    return firstWith(sector, 1, fault).has_value();
}

std::size_t SectorFaults::spanCount(SectorFault fault) const {
    return spans_[static_cast<std::size_t>(fault)].size();
}

std::optional<quel5::TestResult> SectorFaults::readFailure(uint64_t first, uint64_t count) const {
    const auto failing = firstWith(first, count, SectorFault::ReadFails);
    const auto internal = firstWith(first, count, SectorFault::ReadInternalError);
    if (!failing && !internal) {
        return std::nullopt;
    }
    if (internal && (!failing || *internal <= *failing)) {
        return quel5::TestResult::INTERNALERROR;
    }
    return quel5::TestResult::FAIL;
}

bool SectorFaults::writeFails(uint64_t first, uint64_t count) const {
    return firstWith(first, count, SectorFault::WriteFails).has_value();
}

void SectorFaults::applyFlakyRead(uint64_t sector, uint8_t* data, uint32_t bytes) {
    const uint32_t earlierReads = flakyReads_[sector]++;
    if (earlierReads == 0 || bytes == 0) {
        return;
    }
    // Invert the first byte so every later read differs from the stored data, and stamp the
    // read number into the next so consecutive later reads differ from each other as well.
    data[0] = static_cast<uint8_t>(~data[0]);
    if (bytes > 1) {
        data[1] = static_cast<uint8_t>(data[1] ^ static_cast<uint8_t>(earlierReads));
    }
}

}  // namespace sim

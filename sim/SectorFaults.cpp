#include "sim/SectorFaults.h"

namespace sim {
namespace {

uint8_t bit(SectorFault fault) { return static_cast<uint8_t>(fault); }

}  // namespace

void SectorFaults::add(uint64_t sector, SectorFault fault) { faults_[sector] |= bit(fault); }

void SectorFaults::clear() {
    faults_.clear();
    flakyReads_.clear();
}

bool SectorFaults::has(uint64_t sector, SectorFault fault) const {
    const auto found = faults_.find(sector);
    return found != faults_.end() && (found->second & bit(fault)) != 0;
}

std::optional<uint64_t> SectorFaults::firstWith(uint64_t first, uint64_t count,
                                                uint8_t mask) const {
    for (auto it = faults_.lower_bound(first); it != faults_.end() && it->first - first < count;
         ++it) {
        if ((it->second & mask) != 0) {
            return it->first;
        }
    }
    return std::nullopt;
}

std::optional<quel5::TestResult> SectorFaults::readFailure(uint64_t first, uint64_t count) const {
    const auto sector =
        firstWith(first, count, bit(SectorFault::ReadFails) | bit(SectorFault::ReadInternalError));
    if (!sector) {
        return std::nullopt;
    }
    return has(*sector, SectorFault::ReadInternalError) ? quel5::TestResult::INTERNALERROR
                                                        : quel5::TestResult::FAIL;
}

bool SectorFaults::writeFails(uint64_t first, uint64_t count) const {
    return firstWith(first, count, bit(SectorFault::WriteFails)).has_value();
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

// Faults a test can plant in the emulated writer: a sense answer on chosen commands, writes
// the medium silently drops, and a device that has gone away.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "sim/mmc/Sense.h"

namespace sim::mmc {

// Answers CHECK CONDITION with `sense` instead of running the command, on commands that match:
// the operation code (every command when unset) and, when `lba` is set, only READ and WRITE
// commands whose sectors include it.
struct SenseFault {
    std::optional<uint8_t> opcode;
    std::optional<uint32_t> lba;
    uint32_t skip = 0;   // matching commands let through first: the fault hits the (skip+1)th
    uint32_t times = 1;  // matching commands it hits before it retires; 0 = it never retires
    Sense sense;
};

// A READ or WRITE command's sectors, [first, first + count).
struct SectorRange {
    uint32_t first = 0;
    uint32_t count = 0;
    bool contains(uint32_t lba) const { return lba >= first && lba - first < count; }
};

class FaultPlan {
public:
    void add(const SenseFault& fault) { senseFaults_.push_back(fault); }
    // The sense of the first planted fault that matches this command, counting it; nullopt
    // when none hits.
    std::optional<Sense> hit(uint8_t opcode, const std::optional<SectorRange>& sectors);

    void loseWritesAt(uint32_t lba) { lostWrites_.insert(lba); }
    bool losesWriteAt(uint32_t lba) const { return lostWrites_.count(lba) != 0; }

    bool gone() const { return gone_; }
    void setGone(bool gone) { gone_ = gone; }

    void clear();

private:
    std::vector<SenseFault> senseFaults_;
    std::set<uint32_t> lostWrites_;
    bool gone_ = false;
};

}  // namespace sim::mmc

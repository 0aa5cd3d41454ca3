#include "sim/mmc/Faults.h"

namespace sim::mmc {

std::optional<Sense> FaultPlan::hit(uint8_t opcode, const std::optional<SectorRange>& sectors) {
    for (auto it = senseFaults_.begin(); it != senseFaults_.end(); ++it) {
        if (it->opcode && *it->opcode != opcode) continue;
        if (it->lba && !(sectors && sectors->contains(*it->lba))) continue;
        if (it->skip > 0) {
            --it->skip;
            continue;
        }
        const Sense sense = it->sense;
        if (it->times == 1) {
            senseFaults_.erase(it);
        } else if (it->times > 1) {
            --it->times;
        }
        return sense;
    }
    return std::nullopt;
}

void FaultPlan::clear() {
    senseFaults_.clear();
    lostWrites_.clear();
    gone_ = false;
}

}  // namespace sim::mmc

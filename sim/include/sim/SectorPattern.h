// The content of a sector that was never written, derived from its address alone so that any
// two reads of it agree and sectors differ from each other.
#pragma once

#include <cstdint>

#include "sim/SimulatedDriveConfig.h"

namespace sim {

// Fills `out` (`bytes` long) with the unwritten content of sector `lba`. For LbaPattern, the
// sector is a run of 8-byte little-endian words, word k holding lba ^ (k * 0x9E3779B97F4A7C15),
// cut off at `bytes`; word 0 is the address itself.
void fillUnwrittenSector(UnwrittenContent content, uint64_t lba, uint8_t* out, uint32_t bytes);

// True when `data` equals what fillUnwrittenSector() would give.
bool isUnwrittenSector(UnwrittenContent content, uint64_t lba, const uint8_t* data, uint32_t bytes);

}  // namespace sim

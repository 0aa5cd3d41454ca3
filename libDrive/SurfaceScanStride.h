// How far apart the surface scan's blocks start. Internal to the library.
//
// Both answers are at least 1 sector, so a scan always moves on, whatever the parameters.
#pragma once

#include <cstdint>

namespace kivrlibdrive {

// The stride that reads `percent` of a range in blocks of `readAmount` sectors: readAmount * 100
// / percent, cut to whole sectors (at most 2^64 - 1). A percent not above 0 (a range counted in
// seeks has none) gives `readAmount`, as 100 percent would.
uint64_t StrideForPercent(uint32_t readAmount, double percent);

// The stride that spreads `seeks` blocks over `rangeSectors` sectors: the low 32 bits of
// rangeSectors / seeks. REQUIRES: seeks > 0.
uint64_t StrideForSeeks(uint64_t rangeSectors, uint32_t seeks);

}  // namespace kivrlibdrive

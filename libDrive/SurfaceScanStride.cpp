#include "SurfaceScanStride.h"

#include <algorithm>
#include <limits>

namespace kivrlibdrive {

uint64_t StrideForPercent(uint32_t readAmount, double percent) {
    if (!(percent > 0.0)) {
        return std::max<uint64_t>(readAmount, 1);
    }
    const double stride = static_cast<double>(readAmount) * 100.0 / percent;
    // 2^64: the first value a 64-bit count cannot hold.
    if (stride >= 18446744073709551616.0) {
        return std::numeric_limits<uint64_t>::max();
    }
    return std::max<uint64_t>(static_cast<uint64_t>(stride), 1);
}

uint64_t StrideForSeeks(uint64_t rangeSectors, uint32_t seeks) {
    const auto stride = static_cast<uint32_t>(rangeSectors / seeks);
    return std::max<uint64_t>(stride, 1);
}

}  // namespace kivrlibdrive

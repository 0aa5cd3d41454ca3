#include "sim/SectorPattern.h"

#include <algorithm>

namespace sim {
namespace {

constexpr uint64_t kWordSpread = 0x9E3779B97F4A7C15ull;

uint8_t patternByte(uint64_t lba, uint32_t offset) {
    const uint64_t word = lba ^ (static_cast<uint64_t>(offset / 8) * kWordSpread);
    return static_cast<uint8_t>(word >> (8 * (offset % 8)));
}

}  // namespace

void fillUnwrittenSector(UnwrittenContent content, uint64_t lba, uint8_t* out, uint32_t bytes) {
    if (content == UnwrittenContent::Zeros) {
        std::fill(out, out + bytes, uint8_t{0});
        return;
    }
    for (uint32_t i = 0; i < bytes; ++i) {
        out[i] = patternByte(lba, i);
    }
}

bool isUnwrittenSector(UnwrittenContent content, uint64_t lba, const uint8_t* data,
                       uint32_t bytes) {
    for (uint32_t i = 0; i < bytes; ++i) {
        const uint8_t expected = content == UnwrittenContent::Zeros ? 0 : patternByte(lba, i);
        if (data[i] != expected) {
            return false;
        }
    }
    return true;
}

}  // namespace sim

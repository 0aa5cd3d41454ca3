// Reading the little-endian numbers that Windows answers carry, whatever the host's order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace os {

// The unsigned number stored in `count` bytes from `bytes`, lowest byte first.
// REQUIRES: count <= 8 and `bytes` holds `count` readable bytes.
inline uint64_t littleEndian(const unsigned char* bytes, size_t count) {
    uint64_t value = 0;
    for (size_t i = count; i-- > 0;) value = (value << 8) | bytes[i];
    return value;
}

inline uint32_t littleEndian32(const unsigned char* bytes) {
    return static_cast<uint32_t>(littleEndian(bytes, 4));
}

}  // namespace os

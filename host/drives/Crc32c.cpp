#include "drives/Crc32c.h"

#include <array>

namespace host {
namespace {

constexpr uint32_t kReflectedPolynomial = 0x82F63B78;

constexpr std::array<uint32_t, 256> makeTable() {
    std::array<uint32_t, 256> table{};
    for (uint32_t i = 0; i < 256; ++i) {
        uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1) != 0 ? (value >> 1) ^ kReflectedPolynomial : value >> 1;
        }
        table[i] = value;
    }
    return table;
}

constexpr std::array<uint32_t, 256> kTable = makeTable();

}  // namespace

uint32_t crc32c(const void* data, std::size_t size, uint32_t crc) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    crc = ~crc;
    for (std::size_t i = 0; i < size; ++i) {
        crc = kTable[(crc ^ bytes[i]) & 0xFF] ^ (crc >> 8);
    }
    return ~crc;
}

}  // namespace host

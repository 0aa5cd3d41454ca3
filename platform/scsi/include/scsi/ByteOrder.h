// Byte order between the drive's big-endian fields and the host.
#pragma once

#include <cstddef>
#include <cstdint>

#include "scsi/Export.h"

namespace kivscsi {

// Reverse the byte order of a 16- or 32-bit value: turns a big-endian field read as a whole
// into host order on the little-endian hosts the library runs on, and back.
SCSI_API uint16_t SwapBytes16(uint16_t value);
SCSI_API uint32_t SwapBytes32(uint32_t value);

// Big-endian fields read from / written to a byte buffer. REQUIRES: 2, 3 or 4 valid bytes.
constexpr uint16_t readBig16(const uint8_t* bytes) {
    return static_cast<uint16_t>((bytes[0] << 8) | bytes[1]);
}
constexpr uint32_t readBig24(const uint8_t* bytes) {
    return (uint32_t{bytes[0]} << 16) | (uint32_t{bytes[1]} << 8) | bytes[2];
}
constexpr uint32_t readBig32(const uint8_t* bytes) {
    return (uint32_t{bytes[0]} << 24) | readBig24(bytes + 1);
}
constexpr void writeBig16(uint8_t* bytes, uint16_t value) {
    bytes[0] = static_cast<uint8_t>(value >> 8);
    bytes[1] = static_cast<uint8_t>(value);
}
constexpr void writeBig32(uint8_t* bytes, uint32_t value) {
    writeBig16(bytes, static_cast<uint16_t>(value >> 16));
    writeBig16(bytes + 2, static_cast<uint16_t>(value));
}

}  // namespace kivscsi

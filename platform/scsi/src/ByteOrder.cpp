#include "scsi/ByteOrder.h"

namespace kivscsi {

uint16_t SwapBytes16(uint16_t value) { return static_cast<uint16_t>((value >> 8) | (value << 8)); }

uint32_t SwapBytes32(uint32_t value) {
    return (value >> 24) | ((value >> 8) & 0x0000FF00u) | ((value << 8) & 0x00FF0000u) |
           (value << 24);
}

}  // namespace kivscsi

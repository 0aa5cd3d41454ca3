#include "sim/mmc/Sense.h"

#include "Bytes.h"

namespace sim::mmc {

uint8_t senseKeyFor(uint16_t code) {
    switch (code >> 8) {
        case 0x04:
        case 0x3A:
            return key::kNotReady;
        case 0x08:
        case 0x44:
            return key::kHardwareError;
        case 0x0C:
        case 0x11:
        case 0x57:
        case 0x73:
            return key::kMediumError;
        case 0x28:
        case 0x29:
        case 0x2A:
            return key::kUnitAttention;
        case 0x47:
        case 0x4B:
            return key::kAbortedCommand;
        default:
            return key::kIllegalRequest;
    }
}

std::array<uint8_t, kFixedSenseLength> fixedSenseData(const Sense& sense) {
    std::array<uint8_t, kFixedSenseLength> data{};
    data[0] = 0x70;  // current error, fixed format
    data[2] = sense.key & 0x0F;
    data[7] = kFixedSenseLength - 8;  // additional sense length
    data[12] = static_cast<uint8_t>(sense.code >> 8);
    data[13] = static_cast<uint8_t>(sense.code);
    if (sense.progress) {
        data[15] = 0x80;  // SKSV: bytes 16-17 hold the progress indication
        putBe16(&data[16], *sense.progress);
    }
    return data;
}

}  // namespace sim::mmc

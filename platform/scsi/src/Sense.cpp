#include "scsi/Sense.h"

#include <algorithm>

namespace kivscsi {
namespace {

constexpr uint8_t kResponseCodeMask = 0x7F;
constexpr size_t kFixedAdditionalLengthOffset = 7;
constexpr size_t kFixedAscOffset = 12;
constexpr size_t kFixedAscqOffset = 13;
constexpr size_t kDescriptorMinimumLength = 4;
constexpr uint8_t kScsiConditionMet = 0x04;

}  // namespace

SenseFields decodeSense(const uint8_t* sense, size_t length) {
    SenseFields fields;
    if (sense == nullptr || length == 0) return fields;
    const uint8_t responseCode = sense[0] & kResponseCodeMask;
    if (responseCode == 0x70 || responseCode == 0x71) {
        if (length <= kFixedAdditionalLengthOffset) return fields;
        // The drive may state fewer bytes than it sent, or more; the smaller count is real.
        const size_t stated =
            kFixedAdditionalLengthOffset + 1 + sense[kFixedAdditionalLengthOffset];
        const size_t usable = std::min(length, stated);
        if (usable <= kFixedAscqOffset) return fields;
        fields.valid = true;
        fields.senseKey = sense[2] & 0x0F;
        fields.asc = sense[kFixedAscOffset];
        fields.ascq = sense[kFixedAscqOffset];
    } else if (responseCode == 0x72 || responseCode == 0x73) {
        if (length < kDescriptorMinimumLength) return fields;
        fields.valid = true;
        fields.descriptorFormat = true;
        fields.senseKey = sense[1] & 0x0F;
        fields.asc = sense[2];
        fields.ascq = sense[3];
    }
    return fields;
}

Status statusFromSense(const uint8_t* sense, size_t length) {
    const SenseFields fields = decodeSense(sense, length);
    if (!fields.valid) return kStatusNoSense;
    // The drive recovered by itself and the command completed; the code only says how.
    if (fields.senseKey == kSenseKeyRecoveredError) return kStatusGood;
    const Status code = (Status{fields.asc} << 8) | fields.ascq;
    return code != 0 ? code : kStatusSenseWithoutCode;
}

Status statusFromResponse(const ScsiResponse& response) {
    if (response.transportStatus != kStatusGood) return response.transportStatus;
    switch (response.scsiStatus) {
        case kScsiGood:
        case kScsiConditionMet:
            return kStatusGood;
        case kScsiCheckCondition:
            return statusFromSense(response.sense.data(),
                                   std::min<size_t>(response.senseLength, kMaxSenseLength));
        case kScsiBusy:
        case kScsiTaskSetFull:
            return kStatusDeviceBusy;
        case kScsiReservationConflict:
            return kStatusReservationConflict;
        default:
            return kStatusUnexpectedScsiStatus;
    }
}

}  // namespace kivscsi

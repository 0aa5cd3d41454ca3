// Turning a drive's answer into the library's 32-bit status.
#pragma once

#include <cstddef>
#include <cstdint>

#include "scsi/Export.h"
#include "scsi/Status.h"
#include "scsi/Transport.h"

namespace kivscsi {

// The fields of sense data the library uses.
struct SenseFields {
    bool valid = false;  // false when the data is too short or of an unknown format
    bool descriptorFormat = false;
    uint8_t senseKey = 0;
    uint8_t asc = 0;
    uint8_t ascq = 0;
};

inline constexpr uint8_t kSenseKeyNoSense = 0x0;
inline constexpr uint8_t kSenseKeyRecoveredError = 0x1;

// Decodes fixed (response codes 0x70, 0x71) or descriptor (0x72, 0x73) sense data from the
// first `length` bytes of `sense`. Fixed sense needs its ASC/ASCQ bytes (12 and 13) inside both
// `length` and the additional sense length it states; descriptor sense needs 4 bytes. Reads
// nothing beyond `length`; `sense` may be null when `length` is 0.
SCSI_API SenseFields decodeSense(const uint8_t* sense, size_t length);

// The status of a CHECK CONDITION carrying this sense data:
//   0 for RECOVERED ERROR, whatever its code (the command completed); otherwise
//   (ASC << 8) | ASCQ when that is not zero, kStatusSenseWithoutCode when it is;
//   kStatusNoSense when the sense data cannot be decoded.
SCSI_API Status statusFromSense(const uint8_t* sense, size_t length);

// The status of a whole response: the transport's failure, 0 for GOOD (and CONDITION MET),
// the sense-derived status for CHECK CONDITION, and kStatusDeviceBusy,
// kStatusReservationConflict or kStatusUnexpectedScsiStatus for the other status bytes.
SCSI_API Status statusFromResponse(const ScsiResponse& response);

}  // namespace kivscsi

// Reading and writing user data blocks. Each returns the status (scsi/Status.h); a read that
// does not finish in time answers kStatusTimedOut (0xAA02), a vanished device
// kStatusNoSuchDevice / kStatusDeviceGone (0xAB0D / 0xAB10).
#pragma once

#include <cstdint>

#include "scsi/Export.h"
#include "scsi/ScsiPath.h"
#include "scsi/Status.h"

namespace kivscsi {

// Timeout of ReadBlocksFUAEx, which takes none.
inline constexpr uint32_t kForcedReadTimeoutSeconds = 20;

// READ(10) of `count` blocks from `lba` into `buffer` of `bufferBytes` bytes (the data phase
// is `bufferBytes` long; REQUIRES: buffer valid for that many), waiting up to
// `timeoutSeconds`. The drive may answer from its cache.
SCSI_API Status ReadBlocksTimedEx(const _SCSI_PATH& path, const char* deviceName, void* buffer,
                                  uint32_t bufferBytes, uint32_t lba, uint16_t count,
                                  uint32_t timeoutSeconds);

// READ(12) with forced unit access: the blocks come from the medium, not the cache. Drives
// that do not accept FUA answer 0x2400 (invalid field in CDB).
SCSI_API Status ReadBlocksFUAEx(const _SCSI_PATH& path, const char* deviceName, void* buffer,
                                uint32_t bufferBytes, uint32_t lba, uint16_t count);

// WRITE(10) of `count` blocks of `blockBytes` bytes each from `buffer` to `lba` (the data phase
// is count x blockBytes; REQUIRES: buffer valid for that many), waiting up to
// `timeoutSeconds`. A data phase over 4 GiB is refused with kStatusInvalidRequest.
SCSI_API Status WriteBlocksEx(const _SCSI_PATH& path, const char* deviceName, const void* buffer,
                              uint32_t blockBytes, uint32_t lba, uint16_t count,
                              uint32_t timeoutSeconds);

}  // namespace kivscsi

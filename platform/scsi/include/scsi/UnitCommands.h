// Readiness, spin, tray and cache commands. Every function sends one command to the device
// named `deviceName` (UTF-8, e.g. "/dev/sr0", "\\.\CdRom0", or an emulated device's name) and
// returns its status (scsi/Status.h). `path` names the device's SCSI address; the device name
// alone selects the device.
#pragma once

#include <cstdint>

#include "scsi/Export.h"
#include "scsi/ScsiPath.h"
#include "scsi/Status.h"

namespace kivscsi {

// TEST UNIT READY.
SCSI_API Status TestUnitReady(const _SCSI_PATH& path, const char* deviceName);

// START STOP UNIT: spin up (StartUnit), spin down (StopUnit), close the tray and spin up
// (Load), open the tray (EjectMedia). Each waits for the drive to finish.
SCSI_API Status StartUnit(const _SCSI_PATH& path, const char* deviceName);
SCSI_API Status StopUnit(const _SCSI_PATH& path, const char* deviceName);
SCSI_API Status Load(const _SCSI_PATH& path, const char* deviceName);
SCSI_API Status EjectMedia(const _SCSI_PATH& path, const char* deviceName);

// PREVENT ALLOW MEDIUM REMOVAL: lock and unlock the tray.
SCSI_API Status PreventMediumRemoval(const _SCSI_PATH& path, const char* deviceName);
SCSI_API Status AllowMediumRemoval(const _SCSI_PATH& path, const char* deviceName);

// What READ CAPACITY answers: the address of the last block and the block length in bytes.
struct Capacity {
    uint32_t lastLba = 0;
    uint32_t blockLength = 0;
};

// READ CAPACITY(10). On success *capacity (when given) holds the answer in host order. When
// the drive answers fewer than the 8 bytes of the answer the status is kStatusShortAnswer;
// *capacity is left untouched whenever the status is not 0.
SCSI_API Status ReadCapacity(const _SCSI_PATH& path, const char* deviceName,
                             Capacity* capacity = nullptr);

// SYNCHRONIZE CACHE(10) over the whole medium, waiting up to `timeoutSeconds`.
SCSI_API Status KIVR_SynchronizeCache(const _SCSI_PATH& path, const char* deviceName,
                                      uint32_t timeoutSeconds);

}  // namespace kivscsi

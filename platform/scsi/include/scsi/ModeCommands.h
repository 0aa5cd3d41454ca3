// Mode pages, speed and power calibration. Each returns the status (scsi/Status.h).
#pragma once

#include <cstdint>

#include "scsi/Export.h"
#include "scsi/ScsiPath.h"
#include "scsi/Status.h"

namespace kivscsi {

// MODE SENSE(10) of the current values of page `pageCode` (low six bits used), block
// descriptors allowed. Reads at most `allocation` bytes into `buffer` (REQUIRES: valid for
// that many); `received` as in scsi/DiscCommands.h. Use findModePage() (scsi/Decoders.h) to
// locate the page in the answer.
SCSI_API Status KIVR_GetSenseData10(const _SCSI_PATH& path, const char* deviceName,
                                    uint8_t pageCode, void* buffer, uint16_t allocation,
                                    uint32_t* received = nullptr);

// MODE SELECT(10) sending `length` bytes of `parameterList` (mode parameter header followed by
// pages). The page-format bit is always set; bit 0 of `flags` asks the drive to save the pages.
SCSI_API Status KIVR_SetSenseData10(const _SCSI_PATH& path, const char* deviceName, uint8_t flags,
                                    const void* parameterList, uint16_t length);

// SET CD SPEED with read and write speeds in kB/s (0xFFFF: the drive's maximum).
SCSI_API Status KIVR_SetCDSpeed(const _SCSI_PATH& path, const char* deviceName, uint16_t readSpeed,
                                uint16_t writeSpeed);

// SEND OPC INFORMATION asking the drive to run its optimum power calibration now.
SCSI_API Status SendOPCInfo(const _SCSI_PATH& path, const char* deviceName);

}  // namespace kivscsi

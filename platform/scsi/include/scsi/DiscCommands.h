// Commands that ask the drive about its disc: profile and features, media events, disc and
// track information, write speeds, DVD and BD structures, CD ATIP. Every function reads at most
// `allocation` bytes into `buffer` (REQUIRES: buffer valid for `allocation` bytes) and returns the
// status (scsi/Status.h). `received`, when given, is set to the bytes the drive really returned
// (allocation minus residual); decoders (scsi/Decoders.h) take that count. The rest of the
// buffer keeps what it held before the call.
#pragma once

#include <cstdint>

#include "scsi/Export.h"
#include "scsi/ScsiPath.h"
#include "scsi/Status.h"

namespace kivscsi {

// GET CONFIGURATION. `requestType` (0 all, 1 current, 2 one feature) goes in the RT field.
SCSI_API Status GetConfiguration(const _SCSI_PATH& path, const char* deviceName,
                                 uint8_t requestType, uint16_t startingFeature, void* buffer,
                                 uint16_t allocation, uint32_t* received = nullptr);

// GET EVENT STATUS NOTIFICATION. `polled` must be true for the drive to answer at once;
// `classRequest` is the class bit mask (0x10: media class).
SCSI_API Status GetEventStatusNotification(const _SCSI_PATH& path, const char* deviceName,
                                           bool polled, uint8_t classRequest, void* buffer,
                                           uint16_t allocation, uint32_t* received = nullptr);

// READ DISC INFORMATION with data type `dataType` (0: standard disc information).
SCSI_API Status ReadDiscInformation(const _SCSI_PATH& path, const char* deviceName, void* buffer,
                                    uint16_t allocation, uint8_t dataType = 0,
                                    uint32_t* received = nullptr);

// READ TRACK INFORMATION. `addressType` goes in the Address/Number Type field: 0 `address` is
// an LBA inside the track, 1 a track number (0xFF: the invisible or incomplete track), 2 a
// session number (its first track).
SCSI_API Status ReadTrackInformation(const _SCSI_PATH& path, const char* deviceName,
                                     uint8_t addressType, uint32_t address, void* buffer,
                                     uint16_t allocation, uint32_t* received = nullptr);

// GET PERFORMANCE with type 03h: the write speeds the drive offers for the loaded disc, at
// most `maxDescriptors` of them (8-byte header, then 16 bytes each; see
// decodeWriteSpeedDescriptors).
SCSI_API Status GetWriteSpeedPerformance(const _SCSI_PATH& path, const char* deviceName,
                                         uint16_t maxDescriptors, void* buffer, uint16_t allocation,
                                         uint32_t* received = nullptr);

// READ DISC STRUCTURE for DVD and HD DVD media (media type 0) and for BD media (media type 1).
// `format` selects the structure (DVD 0x00 physical format, 0x01 copyright, 0x11 ADIP;
// BD 0x00 disc information); `agid` is the authentication grant id (0..3).
SCSI_API Status ReadDvdStructure(const _SCSI_PATH& path, const char* deviceName, uint32_t address,
                                 uint8_t layer, uint8_t format, void* buffer, uint16_t allocation,
                                 uint8_t agid = 0, uint32_t* received = nullptr);
SCSI_API Status ReadBdStructure(const _SCSI_PATH& path, const char* deviceName, uint32_t address,
                                uint8_t layer, uint8_t format, void* buffer, uint16_t allocation,
                                uint8_t agid = 0, uint32_t* received = nullptr);

// READ TOC/PMA/ATIP with format 4 (ATIP). `msf` sets the MSF bit (0 in normal use).
SCSI_API Status KIVR_ReadATIP(const _SCSI_PATH& path, const char* deviceName, uint8_t msf,
                              void* buffer, uint16_t allocation, uint32_t* received = nullptr);

}  // namespace kivscsi

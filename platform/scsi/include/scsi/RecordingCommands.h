// Erasing, formatting and closing recordable media. Each waits for the drive to finish the
// operation (up to an hour) and returns the status (scsi/Status.h).
#pragma once

#include <cstdint>

#include "scsi/Export.h"
#include "scsi/ScsiPath.h"
#include "scsi/Status.h"

namespace kivscsi {

// BLANK with blanking type `type` (0 the whole disc, 1 minimal: the lead-in and TOC) starting
// at `startAddress` (a track number or address for the types that take one).
SCSI_API Status Blank(const _SCSI_PATH& path, const char* deviceName, uint8_t type,
                      uint32_t startAddress = 0);

// FORMAT UNIT with a parameter list (FmtData set, format code 001b): `length` bytes of
// `formatList`, a 4-byte list header followed by format descriptors, sent as given.
SCSI_API Status FormatDvdUnit(const _SCSI_PATH& path, const char* deviceName,
                              const void* formatList, uint16_t length);

// CLOSE TRACK/SESSION, close function 1 (close the track) on `trackNumber`.
SCSI_API Status CloseTrack(const _SCSI_PATH& path, const char* deviceName,
                           uint16_t trackNumber = 1);

// CLOSE TRACK/SESSION with close function `closeFunction` (1 close the track, 2 close the
// session) on track 1.
SCSI_API Status CloseFirstSession(const _SCSI_PATH& path, const char* deviceName,
                                  uint8_t closeFunction);

// CLOSE TRACK/SESSION with every field given: close function (low three bits), track number
// and the Immed bit. Close function 0 on track 0 stops a background format.
SCSI_API Status CloseTrackSession(const _SCSI_PATH& path, const char* deviceName,
                                  uint8_t closeFunction, uint16_t trackNumber, bool immediate);

}  // namespace kivscsi

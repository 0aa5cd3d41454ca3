// The 32-bit status every SCSI library call returns, and the complete list of the library's
// own transport failures.
//
//   0                 the command completed with GOOD status
//   0x0000ASCQ form   (ASC << 8) | ASCQ taken from the drive's sense data (fixed or descriptor)
//   0xAAxx            the command reached the device path but did not complete normally
//   0xABxx            the device could not be reached at all
//
// Callers compare on the low 16 bits; the upper 16 bits are always zero.
#pragma once

#include <cstdint>

namespace kivscsi {

using Status = uint32_t;

inline constexpr Status kStatusGood = 0x0000;

// --- 0xAAxx: the command was sent (or about to be) but did not end with usable status ---
// The transport failed in a way not listed below (an ioctl error without a better name).
inline constexpr Status kStatusTransportError = 0xAA01;
// The command did not complete within its timeout (a read that timed out, for instance).
inline constexpr Status kStatusTimedOut = 0xAA02;
// The caller's arguments cannot form a command: no buffer for a data phase, a command block
// longer than 16 bytes, a data phase over 4 GiB.
inline constexpr Status kStatusInvalidRequest = 0xAA03;
// CHECK CONDITION without sense data, or sense data in a format the library does not know.
inline constexpr Status kStatusNoSense = 0xAA04;
// CHECK CONDITION whose sense carries ASC = ASCQ = 0 under any sense key but RECOVERED ERROR,
// which would otherwise read as success.
inline constexpr Status kStatusSenseWithoutCode = 0xAA05;
// BUSY or TASK SET FULL from the device.
inline constexpr Status kStatusDeviceBusy = 0xAA06;
// RESERVATION CONFLICT from the device.
inline constexpr Status kStatusReservationConflict = 0xAA07;
// A SCSI status byte the library does not expect (not GOOD, CHECK CONDITION, BUSY, ...).
inline constexpr Status kStatusUnexpectedScsiStatus = 0xAA08;
// The host adapter or its driver reported an error (bus reset, aborted command, ...).
inline constexpr Status kStatusAdapterError = 0xAA09;
// GOOD status, but fewer data bytes than a call needs to give its answer (READ CAPACITY).
inline constexpr Status kStatusShortAnswer = 0xAA0A;
// The operating system refused the data transfer before the device saw the command: a transfer
// too large for the adapter in one request, or a buffer it cannot map (SG_IO failing with
// EINVAL or ENOMEM; pass-through failing with ERROR_INVALID_PARAMETER, or longer than the
// adapter's largest transfer). Retrying the same transfer fails the same way.
inline constexpr Status kStatusTransferRefused = 0xAA0B;

// --- 0xABxx: the device could not be reached ---
// The device name is empty or not a form any transport accepts.
inline constexpr Status kStatusBadDeviceName = 0xAB01;
// The device exists but refused to be opened (permission, sharing).
inline constexpr Status kStatusAccessDenied = 0xAB02;
// The device exists but does not accept SCSI commands (a plain file, a directory, a non-SCSI
// device, an emulated device that is no SCSI target).
inline constexpr Status kStatusNotScsiDevice = 0xAB03;
// No device of that name exists (never attached or already removed when opening).
inline constexpr Status kStatusNoSuchDevice = 0xAB0D;
// The device went away while the command was in flight or was reported disconnected.
inline constexpr Status kStatusDeviceGone = 0xAB10;

// True for the library's own failures (0xAAxx and 0xABxx).
constexpr bool isTransportFailure(Status status) {
    const Status high = status & 0xFF00u;
    return (status & 0xFFFF0000u) == 0 && (high == 0xAA00u || high == 0xAB00u);
}

// True when the device is no longer usable and retrying is pointless.
constexpr bool isDeviceGone(Status status) {
    return status == kStatusNoSuchDevice || status == kStatusDeviceGone;
}

}  // namespace kivscsi

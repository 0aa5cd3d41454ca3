// Taking a Windows physical disk away from everybody else: the decisions, over the handful of
// system calls they need (VolumeCalls), so that tests drive them with a fake on any platform.
// DiskLock_windows.cpp gives the real calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Hold.h"

namespace libStorage::detail {

// System error codes the decisions tell apart (the values of winerror.h).
inline constexpr uint32_t kErrorInvalidFunction = 1;    // ERROR_INVALID_FUNCTION
inline constexpr uint32_t kErrorNoMoreFiles = 18;       // ERROR_NO_MORE_FILES
inline constexpr uint32_t kErrorNotReady = 21;          // ERROR_NOT_READY
inline constexpr uint32_t kErrorNotSupported = 50;      // ERROR_NOT_SUPPORTED
inline constexpr uint32_t kErrorMoreData = 234;         // ERROR_MORE_DATA
inline constexpr uint32_t kErrorNoMediaInDrive = 1112;  // ERROR_NO_MEDIA_IN_DRIVE

using VolumeHandle = void*;

// The calls; each answers 0 or the system's error code.
class VolumeCalls {
public:
    virtual ~VolumeCalls() = default;
    // FindFirstVolumeW / FindNextVolumeW: the next volume's name (\\?\Volume{...}\).
    // kErrorNoMoreFiles when there are no more. endVolumeSearch: FindVolumeClose.
    virtual uint32_t firstVolume(std::wstring& name) = 0;
    virtual uint32_t nextVolume(std::wstring& name) = 0;
    virtual void endVolumeSearch() = 0;
    // CreateFileW on the volume device (its name without the trailing backslash), sharing
    // reading and writing: with access 0 (enough to ask its extents, and refused by nothing)
    // or, `forLocking`, for reading and writing.
    virtual uint32_t openVolume(const std::wstring& path, bool forLocking,
                                VolumeHandle& volume) = 0;
    // IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS into `answer` (its size is the output buffer's);
    // `returned` gets the bytes written, also with kErrorMoreData.
    virtual uint32_t volumeDiskExtents(VolumeHandle volume, std::vector<unsigned char>& answer,
                                       uint32_t& returned) = 0;
    // FSCTL_LOCK_VOLUME, FSCTL_DISMOUNT_VOLUME, FSCTL_UNLOCK_VOLUME, CloseHandle.
    virtual uint32_t lockVolume(VolumeHandle volume) = 0;
    virtual uint32_t dismountVolume(VolumeHandle volume) = 0;
    virtual void unlockVolume(VolumeHandle volume) = 0;
    virtual void closeVolume(VolumeHandle volume) = 0;
    // Claims the disk itself, for a disk without volumes: FSCTL_LOCK_VOLUME through the
    // drive's own handle when there is one, else an open of the disk that shares nothing.
    // releaseDisk gives back what a successful claimDisk took.
    virtual uint32_t claimDisk() = 0;
    virtual void releaseDisk() = 0;
    // The system's text for an error code.
    virtual std::wstring describe(uint32_t error) = 0;
};

// Bytes of an IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS answer holding `extents` extents
// (VOLUME_DISK_EXTENTS: a DWORD count, padding to 8, then DISK_EXTENTs of 24 bytes), at least
// one extent's worth.
size_t extentsAnswerBytes(uint32_t extents);
// The extent count an answer of `returned` bytes announces (also a short answer with
// kErrorMoreData); 0 when it is too short to hold the count.
uint32_t announcedExtents(const std::vector<unsigned char>& answer, uint32_t returned);
// The disk numbers of the extents the answer holds in full.
std::vector<uint32_t> extentDisks(const std::vector<unsigned char>& answer, uint32_t returned);

// Locks and dismounts every volume with an extent on disk `diskNumber` (`disk` names it in
// messages), or, when it has none, claims the disk itself. Returns what is held, or null with
// `failure` naming the volume or the step that refused, having given back everything taken.
// Volumes that are not disk volumes (an optical or network volume) or have no medium are
// passed over; any other volume that cannot be opened or asked for its extents refuses the
// lock, as does a volume list that ends with an error.
std::unique_ptr<Hold> lockDiskVolumes(std::shared_ptr<VolumeCalls> calls, const std::wstring& disk,
                                      uint32_t diskNumber, std::wstring& failure);

}  // namespace libStorage::detail

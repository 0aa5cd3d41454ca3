// libStorage::DeviceLockingManager: takes a whole disk away from everybody else before a test
// touches it, and gives it back afterwards.
//
// Linux: lockVolumes() fails when any partition of the disk is mounted, is the root or a swap
// device, or the disk cannot be opened exclusively (O_EXCL); on success it holds that exclusive
// open until unlockVolumes(). Windows: a physical drive has every volume on it locked and
// dismounted (a volume that cannot be checked or locked refuses the whole lock, naming it), or,
// without volumes, the disk itself claimed; an image file the drive holds open is locked
// through the drive's handle (a byte-range lock past any data, which every other locker's
// claim meets); a single volume (\\.\E:) is locked through the drive's handle.
//
// Linux image files: held by an advisory whole-file lock, and refused while any loop device over
// the same file (same device and inode), or a partition of one, is mounted, is swap, or is held
// open exclusively by someone else; the failure names the loop device and its mount point.
#pragma once

#include <memory>
#include <string>

#include "os/NativeHandle.h"
#include "storage/Export.h"

namespace libStorage {

class STORAGE_API DeviceLockingManager {
public:
    // `osLocator`: the disk as the OS names it (/dev/sdb, an image file, \\.\PhysicalDrive1).
    explicit DeviceLockingManager(std::wstring osLocator);
    ~DeviceLockingManager();
    DeviceLockingManager(const DeviceLockingManager&) = delete;
    DeviceLockingManager& operator=(const DeviceLockingManager&) = delete;

    // The drive's own open handle on the device (not owned; it must stay open while locked),
    // through which lockVolumes claims what cannot be claimed beside an open handle.
    // invalidNativeHandle() (the default) when the drive holds none.
    void setDriveHandle(os::NativeHandle handle);
    // What setDriveHandle() was last given.
    os::NativeHandle driveHandle() const;

    // True when the disk is now held exclusively by this object (also when it already was).
    bool lockVolumes();
    // Releases what lockVolumes took. True when something was released.
    bool unlockVolumes();
    bool isLocked() const;
    // Why the last lockVolumes() failed, in words for a person ("" after a success).
    const std::wstring& lastFailure() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace libStorage

// libStorage::DeviceLockingManager: takes a whole disk away from everybody else before a test
// touches it, and gives it back afterwards.
//
// Linux: lockVolumes() fails when any partition of the disk is mounted, is the root or a swap
// device, or the disk cannot be opened exclusively (O_EXCL); on success it holds that exclusive
// open until unlockVolumes(). Windows: locks and dismounts every volume on the disk, holding the
// volume handles until unlockVolumes().
//
// Linux image files: held by an advisory whole-file lock, and refused while any loop device over
// the same file (same device and inode), or a partition of one, is mounted, is swap, or is held
// open exclusively by someone else; the failure names the loop device and its mount point.
#pragma once

#include <memory>
#include <string>

#include "storage/Export.h"

namespace libStorage {

class STORAGE_API DeviceLockingManager {
public:
    // `osLocator`: the disk as the OS names it (/dev/sdb, an image file, \\.\PhysicalDrive1).
    explicit DeviceLockingManager(std::wstring osLocator);
    ~DeviceLockingManager();
    DeviceLockingManager(const DeviceLockingManager&) = delete;
    DeviceLockingManager& operator=(const DeviceLockingManager&) = delete;

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

// What the block-device drive needs from the operating system beyond platform/os: how to open a
// disk or an image file for diagnostics, whether it refuses writes, how to flush it, and which
// failures mean the device itself is gone. BlockDevice_linux.cpp and BlockDevice_windows.cpp
// implement it; CMake picks one.
#pragma once

#include <cstdint>
#include <string>

#include "os/Device.h"

namespace host::blockdevice {

enum class Kind { Disk, ImageFile };

struct Opened {
    os::DeviceHandle handle;  // invalid when error is set
    bool direct = false;      // transfers bypass the system's cache
    Kind kind = Kind::Disk;
    os::Error error;
};

// Opens `path` (UTF-8) for reading, or for reading and writing when `writable`, never
// exclusively (the Drive base's locking manager holds the exclusive claim). Asks for direct
// I/O when `direct` and falls back to cached I/O on filesystems that refuse it. Fails for paths
// that are neither a disk nor a regular file.
Opened openDevice(const std::string& path, bool writable, bool direct);

// True when the medium or the file refuses writes (read-only disk, file without write
// permission). `handle` is a handle on `path` of the given kind.
bool isWriteProtected(const std::string& path, Kind kind, os::NativeHandle handle);

// Commits what was written through `handle` to the medium.
os::Error flush(os::NativeHandle handle);

// True when an error of a transfer means the device is no longer there (removed, closed,
// medium gone) rather than that some sectors are unreadable.
bool isDeviceGone(uint32_t errorCode);

// True when a direct transfer was refused because the file's filesystem cannot do direct I/O
// at this alignment; cached I/O will succeed.
bool isDirectTransferRefused(uint32_t errorCode);

// The drive handle published by GetHandle() for a native handle, and back. The invalid native
// handle maps to kivrlibdrive::invalidDriveHandle().
void* toDriveHandle(os::NativeHandle handle);
os::NativeHandle fromDriveHandle(void* handle);

}  // namespace host::blockdevice

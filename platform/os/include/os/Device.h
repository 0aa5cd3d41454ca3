// Opening a device (a disk, an optical drive, an image file or an emulated device), asking its
// geometry and reading or writing it at byte offsets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "os/Error.h"
#include "os/Export.h"
#include "os/NativeHandle.h"

namespace os {

// How to open a device; combine with |.
enum Access : uint32_t {
    kRead = 0x1,
    kReadWrite = 0x2,
    // Bypass the system's cache (O_DIRECT / FILE_FLAG_NO_BUFFERING): offsets, sizes and buffer
    // addresses must then be multiples of the sector size.
    kDirect = 0x4,
    // Nobody else may hold the device exclusively while this handle is open. Linux: O_EXCL on a
    // block device (also refused while mounted), flock(LOCK_EX) on a regular file. Windows: no
    // sharing. Emulated devices: one exclusive handle at a time.
    kExclusive = 0x8,
    // Neither read nor write: enough to ask the device's size and properties (Windows: desired
    // access 0, which needs no administrator rights on a physical drive; elsewhere read-only).
    kQuery = 0x10,
    // The device is a drive for removable media that must open also while empty (an optical
    // drive): Linux refuses to open /dev/srN without a disc unless O_NONBLOCK is given; Windows
    // and emulated devices open such drives as any other.
    kNoMediumNeeded = 0x20,
};

// Owns one open native handle and closes it on destruction. Move-only.
class OS_API DeviceHandle {
public:
    DeviceHandle() = default;
    explicit DeviceHandle(NativeHandle adopted) : native_(adopted) {}
    ~DeviceHandle();
    DeviceHandle(DeviceHandle&& other) noexcept;
    DeviceHandle& operator=(DeviceHandle&& other) noexcept;
    DeviceHandle(const DeviceHandle&) = delete;
    DeviceHandle& operator=(const DeviceHandle&) = delete;

    bool valid() const { return native_ != invalidNativeHandle(); }
    NativeHandle native() const { return native_; }
    // Gives up ownership; the caller must close the result with closeNativeHandle().
    NativeHandle release();
    void close();

private:
    NativeHandle native_ = invalidNativeHandle();
};

struct OpenResult {
    DeviceHandle handle;  // invalid when error is set
    Error error;
};

// Opens `path` (UTF-8: /dev/sdb, an image file, \\.\PhysicalDrive1, or the name of a registered
// emulated device). `access` must contain kRead, kReadWrite or kQuery. Windows handles are
// opened for overlapped I/O: readAt and writeAt on one handle may run in parallel from several
// threads, and device control codes go through os::controlDevice (os/DeviceControl.h).
OS_API OpenResult openDevice(const std::string& path, uint32_t access);
OS_API OpenResult openDevice(const std::wstring& path, uint32_t access);

// A second handle on the device behind `handle` that holds it exclusively (see kExclusive).
// Linux re-opens the descriptor's file; emulated devices take their exclusive claim. Windows
// cannot do this for real devices and answers errorCodeNotSupported().
OS_API OpenResult reopenExclusive(NativeHandle handle);

// Closes a handle obtained from openDevice (through DeviceHandle::release) and forgets an
// emulated device's claim. Invalid handles are ignored.
OS_API void closeNativeHandle(NativeHandle handle);

struct DiskGeometry {
    uint64_t cylinders = 0;
    uint32_t tracksPerCylinder = 0;
    uint32_t sectorsPerTrack = 0;
    uint32_t bytesPerSector = 0;
    uint64_t totalBytes = 0;  // the device's whole size, not cylinders x tracks x sectors
};

struct GeometryResult {
    DiskGeometry geometry;  // all zero when error is set
    Error error;
};

// The geometry of an open device. Block devices and physical drives report what the system
// says, their size as the system's length query gives it (on Windows a volume such as \\.\E:
// is its own length, not its disk's). Where the system has no cylinder/head/sector view (regular
// files, most virtual disks) the answer uses 512-byte sectors (or the device's logical sector
// size), 255 tracks per cylinder and 63 sectors per track, and cylinders = sectors / (255 x 63).
OS_API GeometryResult queryDiskGeometry(NativeHandle handle);
inline GeometryResult queryDiskGeometry(const DeviceHandle& handle) {
    return queryDiskGeometry(handle.native());
}

struct IoResult {
    size_t bytes = 0;  // bytes transferred; fewer than asked only at the end of the device
    Error error;
};

// Reads/writes `size` bytes at byte `offset` without moving a file position shared with others
// (pread/pwrite; ReadFile/WriteFile with OVERLAPPED offsets).
OS_API IoResult readAt(NativeHandle handle, uint64_t offset, void* buffer, size_t size);
OS_API IoResult writeAt(NativeHandle handle, uint64_t offset, const void* buffer, size_t size);

// The system directory (GetSystemDirectoryW). Elsewhere there is none: the host may name one in
// the environment variable LIBDRIVE_SYSTEM_DIRECTORY, otherwise "C:\Windows\system32".
// Empty on failure.
OS_API std::wstring systemDirectory();

}  // namespace os

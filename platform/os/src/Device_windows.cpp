#include <windows.h>
#include <winioctl.h>

#include <algorithm>

#include "NativeDevice.h"
#include "os/Utf8.h"

namespace os::detail {
namespace {

Error lastError(const std::string& what) { return makeError(GetLastError(), what); }

HANDLE toHandle(NativeHandle handle) { return static_cast<HANDLE>(handle); }

OVERLAPPED at(uint64_t offset) {
    OVERLAPPED where{};
    where.Offset = static_cast<DWORD>(offset);
    where.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return where;
}

// Transfers are split so that one call never exceeds what a DWORD can count.
constexpr size_t kLargestTransfer = 0x40000000;

}  // namespace

OpenResult nativeOpen(const std::string& path, uint32_t access) {
    DWORD desired = GENERIC_READ;
    if ((access & kReadWrite) != 0) {
        desired |= GENERIC_WRITE;
    }
    const DWORD share = (access & kExclusive) != 0 ? 0 : FILE_SHARE_READ | FILE_SHARE_WRITE;
    const DWORD flags =
        (access & kDirect) != 0 ? FILE_FLAG_NO_BUFFERING | FILE_FLAG_WRITE_THROUGH : 0;
    HANDLE handle =
        CreateFileW(fromUtf8(path).c_str(), desired, share, nullptr, OPEN_EXISTING, flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return OpenResult{{}, lastError("open " + path)};
    }
    return OpenResult{DeviceHandle(handle), Error{}};
}

OpenResult nativeReopenExclusive(NativeHandle) {
    // Windows grants exclusivity only when a handle is opened; an open handle cannot gain it.
    return OpenResult{{}, makeError(errorCodeNotSupported(), "reopen exclusively")};
}

void nativeClose(NativeHandle handle) { CloseHandle(toHandle(handle)); }

GeometryResult nativeGeometry(NativeHandle handle) {
    DISK_GEOMETRY_EX extended{};
    DWORD returned = 0;
    if (DeviceIoControl(toHandle(handle), IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, nullptr, 0, &extended,
                        sizeof extended, &returned, nullptr)) {
        const DISK_GEOMETRY& g = extended.Geometry;
        DiskGeometry geometry;
        geometry.cylinders = static_cast<uint64_t>(g.Cylinders.QuadPart);
        geometry.tracksPerCylinder = g.TracksPerCylinder;
        geometry.sectorsPerTrack = g.SectorsPerTrack;
        geometry.bytesPerSector = g.BytesPerSector;
        geometry.totalBytes = static_cast<uint64_t>(extended.DiskSize.QuadPart);
        return GeometryResult{geometry, {}};
    }
    DISK_GEOMETRY g{};
    if (DeviceIoControl(toHandle(handle), IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0, &g, sizeof g,
                        &returned, nullptr)) {
        DiskGeometry geometry;
        geometry.cylinders = static_cast<uint64_t>(g.Cylinders.QuadPart);
        geometry.tracksPerCylinder = g.TracksPerCylinder;
        geometry.sectorsPerTrack = g.SectorsPerTrack;
        geometry.bytesPerSector = g.BytesPerSector;
        geometry.totalBytes =
            geometry.cylinders * g.TracksPerCylinder * g.SectorsPerTrack * g.BytesPerSector;
        return GeometryResult{geometry, {}};
    }
    const DWORD ioctlError = GetLastError();
    LARGE_INTEGER size{};
    if (GetFileType(toHandle(handle)) == FILE_TYPE_DISK && GetFileSizeEx(toHandle(handle), &size)) {
        // An image file: the system has no geometry for it.
        return GeometryResult{translatedGeometry(static_cast<uint64_t>(size.QuadPart), 512), {}};
    }
    return GeometryResult{{}, makeError(ioctlError, "disk geometry")};
}

IoResult nativeReadAt(NativeHandle handle, uint64_t offset, void* buffer, size_t size) {
    auto* bytes = static_cast<char*>(buffer);
    size_t done = 0;
    while (done < size) {
        OVERLAPPED where = at(offset + done);
        const DWORD asked = static_cast<DWORD>(std::min(size - done, kLargestTransfer));
        DWORD got = 0;
        if (!ReadFile(toHandle(handle), bytes + done, asked, &got, &where)) {
            if (GetLastError() == ERROR_HANDLE_EOF) {
                break;
            }
            return IoResult{done, lastError("read")};
        }
        if (got == 0) {
            break;  // end of the device
        }
        done += got;
    }
    return IoResult{done, {}};
}

IoResult nativeWriteAt(NativeHandle handle, uint64_t offset, const void* buffer, size_t size) {
    const auto* bytes = static_cast<const char*>(buffer);
    size_t done = 0;
    while (done < size) {
        OVERLAPPED where = at(offset + done);
        const DWORD asked = static_cast<DWORD>(std::min(size - done, kLargestTransfer));
        DWORD put = 0;
        if (!WriteFile(toHandle(handle), bytes + done, asked, &put, &where)) {
            return IoResult{done, lastError("write")};
        }
        if (put == 0) {
            return IoResult{done, makeError(ERROR_DISK_FULL, "write")};
        }
        done += put;
    }
    return IoResult{done, {}};
}

NativeHandle newPlaceholderHandle() {
    HANDLE handle = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return handle == nullptr ? invalidNativeHandle() : handle;
}

}  // namespace os::detail

#include <windows.h>
#include <winioctl.h>

#include <algorithm>

#include "DiskLength.h"
#include "NativeDevice.h"
#include "os/DeviceControl.h"
#include "os/Utf8.h"

namespace os {
namespace {

HANDLE toHandle(NativeHandle handle) { return static_cast<HANDLE>(handle); }

// One manual-reset event per thread for the overlapped calls it makes: ReadFile, WriteFile and
// DeviceIoControl reset it when they start, and the thread waits for one call at a time.
class ThreadEvent {
public:
    ThreadEvent() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    ~ThreadEvent() {
        if (event_ != nullptr) CloseHandle(event_);
    }
    ThreadEvent(const ThreadEvent&) = delete;
    ThreadEvent& operator=(const ThreadEvent&) = delete;
    HANDLE get() const { return event_; }

private:
    HANDLE event_;
};

HANDLE threadEvent() {
    thread_local ThreadEvent event;
    return event.get();
}

OVERLAPPED at(uint64_t offset) {
    OVERLAPPED where{};
    where.Offset = static_cast<DWORD>(offset);
    where.OffsetHigh = static_cast<DWORD>(offset >> 32);
    where.hEvent = threadEvent();
    return where;
}

// The end of a call begun with `started` (its BOOL result): waits when it is pending.
// Returns 0 or the error; `done` gets the bytes transferred.
DWORD finish(HANDLE handle, BOOL started, OVERLAPPED& where, DWORD& done) {
    if (started) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    if (error != ERROR_IO_PENDING) {
        return error;
    }
    return GetOverlappedResult(handle, &where, &done, TRUE) ? ERROR_SUCCESS : GetLastError();
}

// Transfers are split so that one call never exceeds what a DWORD can count.
constexpr size_t kLargestTransfer = 0x40000000;

}  // namespace

ControlResult controlDevice(NativeHandle handle, uint32_t code, const void* in, uint32_t inBytes,
                            void* out, uint32_t outBytes) {
    OVERLAPPED where = at(0);
    if (where.hEvent == nullptr) {
        return ControlResult{0, GetLastError()};
    }
    DWORD returned = 0;
    const BOOL started = DeviceIoControl(toHandle(handle), code, const_cast<void*>(in), inBytes,
                                         out, outBytes, &returned, &where);
    const DWORD error = finish(toHandle(handle), started, where, returned);
    return ControlResult{returned, error};
}

namespace detail {
namespace {

Error lastError(const std::string& what) { return makeError(GetLastError(), what); }

DiskGeometry fromDiskGeometry(const DISK_GEOMETRY& g) {
    DiskGeometry geometry;
    geometry.cylinders = static_cast<uint64_t>(g.Cylinders.QuadPart);
    geometry.tracksPerCylinder = g.TracksPerCylinder;
    geometry.sectorsPerTrack = g.SectorsPerTrack;
    geometry.bytesPerSector = g.BytesPerSector;
    return geometry;
}

// IOCTL_DISK_GET_LENGTH_INFO: the size of the disk, partition or volume behind the handle.
std::optional<uint64_t> lengthOf(NativeHandle handle) {
    GET_LENGTH_INFORMATION length{};
    const ControlResult answer =
        controlDevice(handle, IOCTL_DISK_GET_LENGTH_INFO, nullptr, 0, &length, sizeof length);
    if (!answer.ok()) {
        return std::nullopt;
    }
    return lengthFromAnswer(&length, answer.bytes);
}

}  // namespace

OpenResult nativeOpen(const std::string& path, uint32_t access) {
    DWORD desired = 0;
    if ((access & kRead) != 0) {
        desired |= GENERIC_READ;
    }
    if ((access & kReadWrite) != 0) {
        desired |= GENERIC_READ | GENERIC_WRITE;
    }
    const DWORD share = (access & kExclusive) != 0 ? 0 : FILE_SHARE_READ | FILE_SHARE_WRITE;
    DWORD flags = FILE_FLAG_OVERLAPPED;
    if ((access & kDirect) != 0) {
        flags |= FILE_FLAG_NO_BUFFERING | FILE_FLAG_WRITE_THROUGH;
    }
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
    std::optional<DiskGeometry> reported;
    DISK_GEOMETRY_EX extended{};
    DISK_GEOMETRY legacy{};
    ControlResult answer = controlDevice(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, nullptr, 0,
                                         &extended, sizeof extended);
    if (answer.ok()) {
        reported = fromDiskGeometry(extended.Geometry);
        reported->totalBytes = static_cast<uint64_t>(extended.DiskSize.QuadPart);
    } else {
        answer = controlDevice(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0, &legacy,
                               sizeof legacy);
        if (answer.ok()) {
            reported = fromDiskGeometry(legacy);
            reported->totalBytes = reported->cylinders * legacy.TracksPerCylinder *
                                   legacy.SectorsPerTrack * legacy.BytesPerSector;
        }
    }
    if (reported) {
        // Both geometry queries describe the physical disk (for a volume, the disk it lies on)
        // and the older one stops at the last whole cylinder: the length query is the size.
        if (std::optional<uint64_t> length = lengthOf(handle)) {
            return GeometryResult{geometryOfLength(*reported, *length), {}};
        }
        return GeometryResult{*reported, {}};
    }
    LARGE_INTEGER size{};
    if (GetFileType(toHandle(handle)) == FILE_TYPE_DISK && GetFileSizeEx(toHandle(handle), &size)) {
        // An image file: the system has no geometry for it.
        return GeometryResult{translatedGeometry(static_cast<uint64_t>(size.QuadPart), 512), {}};
    }
    return GeometryResult{{}, makeError(answer.error, "disk geometry")};
}

IoResult nativeReadAt(NativeHandle handle, uint64_t offset, void* buffer, size_t size) {
    auto* bytes = static_cast<char*>(buffer);
    size_t done = 0;
    while (done < size) {
        OVERLAPPED where = at(offset + done);
        const DWORD asked = static_cast<DWORD>(std::min(size - done, kLargestTransfer));
        DWORD got = 0;
        const BOOL started = ReadFile(toHandle(handle), bytes + done, asked, &got, &where);
        const DWORD error = finish(toHandle(handle), started, where, got);
        if (error == ERROR_HANDLE_EOF) {
            break;
        }
        if (error != ERROR_SUCCESS) {
            return IoResult{done, makeError(error, "read")};
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
        const BOOL started = WriteFile(toHandle(handle), bytes + done, asked, &put, &where);
        const DWORD error = finish(toHandle(handle), started, where, put);
        if (error != ERROR_SUCCESS) {
            return IoResult{done, makeError(error, "write")};
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

}  // namespace detail
}  // namespace os

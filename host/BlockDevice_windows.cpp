#include <windows.h>
#include <winioctl.h>

#include "host/BlockDevice.h"
#include "os/Utf8.h"

namespace host::blockdevice {
namespace {

// \\.\PhysicalDrive1, \\.\E: and the like name devices; anything else is a file.
bool namesDevice(const std::string& path) { return path.rfind("\\\\.\\", 0) == 0; }

}  // namespace

Opened openDevice(const std::string& path, bool writable, bool direct) {
    Opened opened;
    if (!namesDevice(path)) {
        const DWORD attributes = GetFileAttributesW(os::fromUtf8(path).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES) {
            opened.error = os::makeError(GetLastError(), "open " + path);
            return opened;
        }
        if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0) {
            opened.error = os::makeError(os::errorCodeNotSupported(),
                                         path + " is neither a disk nor an image file");
            return opened;
        }
        opened.kind = Kind::ImageFile;
    }
    const uint32_t access = writable ? os::kReadWrite : os::kRead;
    os::OpenResult result = os::openDevice(path, direct ? access | os::kDirect : access);
    if (direct && result.error.code == ERROR_INVALID_PARAMETER) {
        direct = false;
        result = os::openDevice(path, access);
    }
    opened.handle = std::move(result.handle);
    opened.error = std::move(result.error);
    opened.direct = direct && opened.error.ok();
    return opened;
}

bool isWriteProtected(const std::string& path, Kind kind, os::NativeHandle handle) {
    if (kind == Kind::Disk) {
        DWORD returned = 0;
        return !DeviceIoControl(static_cast<HANDLE>(handle), IOCTL_DISK_IS_WRITABLE, nullptr, 0,
                                nullptr, 0, &returned, nullptr) &&
               GetLastError() == ERROR_WRITE_PROTECT;
    }
    const DWORD attributes = GetFileAttributesW(os::fromUtf8(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

os::Error flush(os::NativeHandle handle) {
    if (!FlushFileBuffers(static_cast<HANDLE>(handle))) {
        return os::makeError(GetLastError(), "flush");
    }
    return os::Error{};
}

bool isDeviceGone(uint32_t errorCode) {
    switch (errorCode) {
        case ERROR_INVALID_HANDLE:
        case ERROR_DEVICE_NOT_CONNECTED:
        case ERROR_DEVICE_REMOVED:
        case ERROR_DEV_NOT_EXIST:
        case ERROR_NOT_READY:
        case ERROR_NO_MEDIA_IN_DRIVE:
            return true;
        default:
            return false;
    }
}

bool isDirectTransferRefused(uint32_t errorCode) { return errorCode == ERROR_INVALID_PARAMETER; }

void* toDriveHandle(os::NativeHandle handle) { return handle; }

os::NativeHandle fromDriveHandle(void* handle) { return handle; }

}  // namespace host::blockdevice

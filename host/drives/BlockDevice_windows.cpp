#include <windows.h>
#include <winioctl.h>

#include "drives/BlockDevice.h"
#include "os/DeviceControl.h"
#include "os/Utf8.h"

namespace host::blockdevice {
namespace {

// \\.\PhysicalDrive1, \\.\E: and the like name devices; anything else is a file.
bool namesDevice(const std::string& path) { return path.rfind("\\\\.\\", 0) == 0; }

// \\.\E: names a volume rather than a whole disk.
bool namesVolume(const std::string& path) {
    return path.size() == 6 && namesDevice(path) && path[5] == ':' &&
           ((path[4] >= 'A' && path[4] <= 'Z') || (path[4] >= 'a' && path[4] <= 'z'));
}

// Whether this process runs with administrator rights (an elevated token).
bool elevated() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return false;
    }
    TOKEN_ELEVATION elevation{};
    DWORD size = 0;
    const bool answered =
        GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size) != 0;
    CloseHandle(token);
    return answered && elevation.TokenIsElevated != 0;
}

// "Access is denied" alone does not tell a person what to do about it.
os::Error explained(os::Error error, const std::string& path) {
    if (error.code == ERROR_ACCESS_DENIED && namesDevice(path) && !elevated()) {
        error.message += " (administrator rights are needed to open " + path +
                         ": run drivediag from an elevated prompt)";
    }
    return error;
}

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
    if (result.error.ok() && namesVolume(path)) {
        // The file system checks transfers against the volume's size as it sees it, which can
        // end short of the partition; the volume's own driver checks them instead. Where this
        // is refused the last sectors may read as failed, which the sizing already avoids.
        os::controlDevice(result.handle.native(), FSCTL_ALLOW_EXTENDED_DASD_IO, nullptr, 0, nullptr,
                          0);
    }
    opened.handle = std::move(result.handle);
    opened.error = explained(std::move(result.error), path);
    opened.direct = direct && opened.error.ok();
    return opened;
}

bool isWriteProtected(const std::string& path, Kind kind, os::NativeHandle handle) {
    if (kind == Kind::Disk) {
        return os::controlDevice(handle, IOCTL_DISK_IS_WRITABLE, nullptr, 0, nullptr, 0).error ==
               ERROR_WRITE_PROTECT;
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

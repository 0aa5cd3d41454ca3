#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "drives/BlockDevice.h"

namespace host::blockdevice {

Opened openDevice(const std::string& path, bool writable, bool direct) {
    Opened opened;
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        opened.error = os::makeError(static_cast<uint32_t>(errno), "open " + path);
        return opened;
    }
    if (S_ISREG(info.st_mode)) {
        opened.kind = Kind::ImageFile;
    } else if (!S_ISBLK(info.st_mode)) {
        opened.error = os::makeError(os::errorCodeNotSupported(),
                                     path + " is neither a disk nor an image file");
        return opened;
    }
    const uint32_t access = writable ? os::kReadWrite : os::kRead;
    os::OpenResult result = os::openDevice(path, direct ? access | os::kDirect : access);
    if (direct && result.error.code == EINVAL) {
        // tmpfs and some network filesystems have no O_DIRECT.
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
        int readOnly = 0;
        return ioctl(handle, BLKROGET, &readOnly) == 0 && readOnly != 0;
    }
    // Root passes access() whatever the mode, so a file nobody may write counts as protected.
    struct stat info {};
    const bool nobodyMayWrite =
        fstat(handle, &info) == 0 && (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
    return nobodyMayWrite || access(path.c_str(), W_OK) != 0;
}

os::Error flush(os::NativeHandle handle) {
    if (fsync(handle) != 0) {
        return os::makeError(static_cast<uint32_t>(errno), "flush");
    }
    return os::Error{};
}

bool isDeviceGone(uint32_t errorCode) {
    switch (errorCode) {
        case ENODEV:
        case ENXIO:
        case EBADF:
        case ENOMEDIUM:
        case ESHUTDOWN:
            return true;
        default:
            return false;
    }
}

bool isDirectTransferRefused(uint32_t errorCode) { return errorCode == EINVAL; }

void* toDriveHandle(os::NativeHandle handle) {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(handle));
}

os::NativeHandle fromDriveHandle(void* handle) {
    return static_cast<os::NativeHandle>(reinterpret_cast<std::intptr_t>(handle));
}

}  // namespace host::blockdevice

#include <fcntl.h>
#include <linux/fs.h>
#include <linux/hdreg.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "NativeDevice.h"

namespace os::detail {
namespace {

Error lastError(const std::string& what) { return makeError(static_cast<uint32_t>(errno), what); }

// Regular files have no O_EXCL claim; an advisory whole-file lock stands in for it.
Error lockIfRegularFile(int fd, const std::string& path) {
    struct stat info {};
    if (fstat(fd, &info) != 0) {
        return lastError("stat " + path);
    }
    if (S_ISREG(info.st_mode) && flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const uint32_t code = errno == EWOULDBLOCK ? errorCodeBusy() : static_cast<uint32_t>(errno);
        return makeError(code, path + " is in use");
    }
    return Error{};
}

OpenResult openPath(const std::string& path, uint32_t access) {
    int flags = O_CLOEXEC | ((access & kReadWrite) != 0 ? O_RDWR : O_RDONLY);
    if ((access & kDirect) != 0) {
        flags |= O_DIRECT;
    }
    if ((access & kExclusive) != 0) {
        flags |= O_EXCL;  // without O_CREAT: an exclusive claim on a block device
    }
    if ((access & kNoMediumNeeded) != 0) {
        flags |= O_NONBLOCK;
    }
    const int fd = ::open(path.c_str(), flags);
    if (fd < 0) {
        return OpenResult{{}, lastError("open " + path)};
    }
    DeviceHandle handle(fd);
    if ((access & kExclusive) != 0) {
        if (Error busy = lockIfRegularFile(fd, path); !busy.ok()) {
            return OpenResult{{}, std::move(busy)};
        }
    }
    return OpenResult{std::move(handle), Error{}};
}

}  // namespace

OpenResult nativeOpen(const std::string& path, uint32_t access) { return openPath(path, access); }

OpenResult nativeReopenExclusive(NativeHandle handle) {
    const int flags = fcntl(handle, F_GETFL);
    if (flags < 0) {
        return OpenResult{{}, lastError("reopen")};
    }
    uint32_t access = (flags & O_ACCMODE) == O_RDONLY ? kRead : kReadWrite;
    if ((flags & O_NONBLOCK) != 0) {
        access |= kNoMediumNeeded;
    }
    return openPath("/proc/self/fd/" + std::to_string(handle), access | kExclusive);
}

void nativeClose(NativeHandle handle) { ::close(handle); }

GeometryResult nativeGeometry(NativeHandle handle) {
    struct stat info {};
    if (fstat(handle, &info) != 0) {
        return GeometryResult{{}, lastError("stat")};
    }
    if (S_ISREG(info.st_mode)) {
        return GeometryResult{translatedGeometry(static_cast<uint64_t>(info.st_size), 512), {}};
    }
    if (!S_ISBLK(info.st_mode)) {
        return GeometryResult{{}, makeError(errorCodeNotSupported(), "not a disk")};
    }
    int sectorSize = 0;
    uint64_t totalBytes = 0;
    if (ioctl(handle, BLKSSZGET, &sectorSize) != 0 ||
        ioctl(handle, BLKGETSIZE64, &totalBytes) != 0) {
        return GeometryResult{{}, lastError("disk size")};
    }
    DiskGeometry geometry = translatedGeometry(totalBytes, static_cast<uint32_t>(sectorSize));
    hd_geometry chs{};
    if (ioctl(handle, HDIO_GETGEO, &chs) == 0 && chs.heads != 0 && chs.sectors != 0) {
        // The driver's translation; its 16-bit cylinder count is recomputed from the size.
        geometry.tracksPerCylinder = chs.heads;
        geometry.sectorsPerTrack = chs.sectors;
        geometry.cylinders =
            totalBytes / geometry.bytesPerSector / (uint64_t{chs.heads} * chs.sectors);
    }
    return GeometryResult{geometry, {}};
}

IoResult nativeReadAt(NativeHandle handle, uint64_t offset, void* buffer, size_t size) {
    auto* bytes = static_cast<char*>(buffer);
    size_t done = 0;
    while (done < size) {
        const ssize_t n =
            pread(handle, bytes + done, size - done, static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            return IoResult{done, lastError("read")};
        }
        if (n == 0) {
            break;  // end of the device
        }
        done += static_cast<size_t>(n);
    }
    return IoResult{done, {}};
}

IoResult nativeWriteAt(NativeHandle handle, uint64_t offset, const void* buffer, size_t size) {
    const auto* bytes = static_cast<const char*>(buffer);
    size_t done = 0;
    while (done < size) {
        const ssize_t n =
            pwrite(handle, bytes + done, size - done, static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return IoResult{done, n < 0 ? lastError("write") : makeError(ENOSPC, "write")};
        }
        done += static_cast<size_t>(n);
    }
    return IoResult{done, {}};
}

NativeHandle newPlaceholderHandle() { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); }

}  // namespace os::detail

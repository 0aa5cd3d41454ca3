#include "LoopBacking.h"

#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "DeviceNumber.h"

namespace libStorage::detail {
namespace {

namespace fs = std::filesystem;

struct FileIdentity {
    dev_t fileSystem = 0;
    ino_t inode = 0;
};

// The kernel reports the backing file's device number in its "huge" encoding (minor bits split
// around the major); glibc's makedev builds st_dev from the same major and minor.
dev_t fromKernelEncoding(uint64_t encoded) {
    const auto majorNumber = static_cast<unsigned>((encoded & 0xfff00) >> 8);
    const auto minorNumber = static_cast<unsigned>((encoded & 0xff) | ((encoded >> 12) & 0xfff00));
    return makedev(majorNumber, minorNumber);
}

// Asks the loop device itself. Its node must be the block device `number`, so that a stale or
// foreign /dev entry is not mistaken for it.
std::optional<FileIdentity> backingFromDevice(const std::string& node, dev_t number) {
    const int fd = ::open(node.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return std::nullopt;
    }
    struct stat info {};
    loop_info64 status{};
    const bool asked = fstat(fd, &info) == 0 && S_ISBLK(info.st_mode) && info.st_rdev == number &&
                       ioctl(fd, LOOP_GET_STATUS64, &status) == 0;
    ::close(fd);
    if (!asked) {
        return std::nullopt;
    }
    return FileIdentity{fromKernelEncoding(status.lo_device), static_cast<ino_t>(status.lo_inode)};
}

// Looks up the path sysfs gives; a backing file deleted or renamed since is not found.
std::optional<FileIdentity> backingFromSysfs(const fs::path& loopDirectory) {
    std::ifstream in(loopDirectory / "backing_file");
    std::string path;
    if (!std::getline(in, path) || path.empty()) {
        return std::nullopt;
    }
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        return std::nullopt;
    }
    return FileIdentity{info.st_dev, info.st_ino};
}

}  // namespace

std::vector<LoopDevice> loopDevicesBackedBy(dev_t fileSystem, ino_t inode) {
    std::vector<LoopDevice> found;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator("/sys/block", ignored)) {
        const std::string name = entry.path().filename().string();
        // Only an attached loop device has the "loop" directory.
        if (name.rfind("loop", 0) != 0 || !fs::exists(entry.path() / "loop", ignored)) {
            continue;
        }
        const std::optional<dev_t> number = deviceNumberIn(entry.path() / "dev");
        if (!number) {
            continue;
        }
        const std::string node = "/dev/" + name;
        std::optional<FileIdentity> backing = backingFromDevice(node, *number);
        if (!backing) {
            backing = backingFromSysfs(entry.path() / "loop");
        }
        if (backing && backing->fileSystem == fileSystem && backing->inode == inode) {
            found.push_back(LoopDevice{node, *number});
        }
    }
    return found;
}

}  // namespace libStorage::detail

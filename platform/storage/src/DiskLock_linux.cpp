#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>

#include "DeviceNumber.h"
#include "Hold.h"
#include "LoopBacking.h"
#include "os/Utf8.h"

namespace libStorage::detail {
namespace {

namespace fs = std::filesystem;

std::wstring wide(const std::string& text) { return os::fromUtf8(text); }

// /proc files escape blanks and backslashes in paths as \ooo.
std::string unescapeOctal(const std::string& field) {
    auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string out;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && isOctal(field[i + 1]) &&
            isOctal(field[i + 2]) && isOctal(field[i + 3])) {
            out += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                     (field[i + 3] - '0'));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

std::optional<dev_t> blockDeviceOf(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0 || !S_ISBLK(info.st_mode)) {
        return std::nullopt;
    }
    return info.st_rdev;
}

// The disk and every partition on it, by device number (sysfs: a partition is a
// subdirectory of its disk holding a "partition" file).
std::set<dev_t> diskAndPartitions(dev_t disk) {
    std::set<dev_t> devices{disk};
    const fs::path sysfs =
        "/sys/dev/block/" + std::to_string(major(disk)) + ":" + std::to_string(minor(disk));
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(sysfs, ignored)) {
        if (!fs::exists(entry.path() / "partition", ignored)) {
            continue;
        }
        if (auto dev = deviceNumberIn(entry.path() / "dev")) {
            devices.insert(*dev);
        }
    }
    return devices;
}

// Where a device of `devices` is mounted, or "" when none is. Compares both the filesystem's
// device number and its source (some filesystems report an anonymous device number).
std::string mountPointOf(const std::set<dev_t>& devices) {
    std::ifstream mountinfo("/proc/self/mountinfo");
    std::string line;
    while (std::getline(mountinfo, line)) {
        std::istringstream fields(line);
        std::string id, parent, number, root, mountPoint, field;
        fields >> id >> parent >> number >> root >> mountPoint;
        while (fields >> field && field != "-") {
        }
        std::string type, source;
        fields >> type >> source;
        auto dev = parseDeviceNumber(number);
        auto sourceDev = blockDeviceOf(unescapeOctal(source));
        if ((dev && devices.count(*dev)) || (sourceDev && devices.count(*sourceDev))) {
            return unescapeOctal(mountPoint);
        }
    }
    return {};
}

// The swap area on a device of `devices`, or "".
std::string swapOn(const std::set<dev_t>& devices) {
    std::ifstream swaps("/proc/swaps");
    std::string line;
    std::getline(swaps, line);  // column titles
    while (std::getline(swaps, line)) {
        std::istringstream fields(line);
        std::string name;
        fields >> name;
        name = unescapeOctal(name);
        if (auto dev = blockDeviceOf(name); dev && devices.count(*dev)) {
            return name;
        }
    }
    return {};
}

// How a device of `devices` is in use, worded to follow its name ("is mounted on /mnt"), or
// "" when it is not mounted and not swap.
std::string useOf(const std::set<dev_t>& devices) {
    if (std::string swap = swapOn(devices); !swap.empty()) {
        return "is in use as swap (" + swap + ")";
    }
    if (std::string mountPoint = mountPointOf(devices); !mountPoint.empty()) {
        return "is mounted on " + mountPoint;
    }
    return {};
}

// True when another opener holds the block device `node` exclusively (a filesystem, a device
// mapper, a RAID set, a program's O_EXCL open): our own exclusive open is then refused.
bool heldExclusively(const std::string& node) {
    const int fd = ::open(node.c_str(), O_RDONLY | O_EXCL | O_CLOEXEC | O_NONBLOCK);
    if (fd >= 0) {
        ::close(fd);
        return false;
    }
    return errno == EBUSY;
}

// Writing an image file behind the back of a loop device in use corrupts what uses it, and
// the image's own advisory lock means nothing to the kernel: every loop device over the same
// file is checked as the disk itself would be. "" when none is in use.
std::string loopUseOf(const std::string& path, const struct stat& image) {
    for (const LoopDevice& loop : loopDevicesBackedBy(image.st_dev, image.st_ino)) {
        std::string use = useOf(diskAndPartitions(loop.number));
        if (use.empty() && heldExclusively(loop.path)) {
            use = "is held open exclusively by another program";
        }
        if (!use.empty()) {
            return path + " is the backing file of " + loop.path + ", which " + use;
        }
    }
    return {};
}

std::unique_ptr<Hold> openExclusively(const std::string& path, std::wstring& failure) {
    os::OpenResult opened = os::openDevice(path, os::kRead | os::kExclusive);
    if (!opened.error.ok()) {
        failure = wide(path + " cannot be opened exclusively: " + opened.error.message);
        return nullptr;
    }
    return std::make_unique<HandleHold>(std::move(opened.handle));
}

}  // namespace

std::unique_ptr<Hold> lockDisk(const std::string& path, os::NativeHandle /*driveHandle*/,
                               std::wstring& failure) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) {
        failure = wide(path + " cannot be found: " + std::strerror(errno));
        return nullptr;
    }
    if (S_ISREG(info.st_mode)) {
        if (std::string use = loopUseOf(path, info); !use.empty()) {
            failure = wide(use);
            return nullptr;
        }
        return openExclusively(path, failure);
    }
    if (!S_ISBLK(info.st_mode)) {
        failure = wide(path + " is neither a disk nor an image file");
        return nullptr;
    }
    const std::set<dev_t> devices = diskAndPartitions(info.st_rdev);
    struct stat rootInfo {};
    if (stat("/", &rootInfo) == 0 && devices.count(rootInfo.st_dev)) {
        failure = wide(path + " holds the root filesystem");
        return nullptr;
    }
    if (std::string use = useOf(devices); !use.empty()) {
        failure = wide(path + " " + use);
        return nullptr;
    }
    return openExclusively(path, failure);
}

}  // namespace libStorage::detail

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "drives/DeviceIdentity.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// The first line of a sysfs attribute, without the blanks the kernel pads model names with.
std::string attribute(const fs::path& file) {
    std::ifstream in(file);
    std::string line;
    if (!in || !std::getline(in, line)) return "";
    const std::size_t last = line.find_last_not_of(" \t\r\n");
    return last == std::string::npos ? "" : line.substr(0, last + 1);
}

// The unit serial number page (80h) as the kernel caches it: a 4-byte header, then the serial.
std::string serialFromVpdPage(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string page((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (page.size() < 4 || static_cast<unsigned char>(page[1]) != 0x80) return "";
    const std::size_t length = static_cast<unsigned char>(page[3]);
    std::string serial = page.substr(4, length);
    const std::size_t first = serial.find_first_not_of(' ');
    const std::size_t last = serial.find_last_not_of(std::string(" \0", 2));
    return first == std::string::npos ? "" : serial.substr(first, last - first + 1);
}

// The sysfs folder of the block device `path` names; empty when it is not one.
fs::path sysfsFolder(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISBLK(status.st_mode)) return {};
    std::error_code error;
    fs::path folder = fs::canonical("/sys/dev/block/" + std::to_string(major(status.st_rdev)) +
                                        ":" + std::to_string(minor(status.st_rdev)),
                                    error);
    return error ? fs::path() : folder;
}

void addHolders(const fs::path& device, std::string& names) {
    std::error_code error;
    for (const auto& holder : fs::directory_iterator(device / "holders", error)) {
        names += (names.empty() ? "" : ", ") + holder.path().filename().string();
    }
}

}  // namespace

std::string holdersOf(const std::string& path) {
    fs::path disk = sysfsFolder(path);
    if (disk.empty()) return "";
    if (fs::exists(disk / "partition")) disk = disk.parent_path();
    std::string names;
    addHolders(disk, names);
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(disk, error)) {
        if (fs::exists(entry.path() / "partition")) addHolders(entry.path(), names);
    }
    return names;
}

DeviceIdentity identifyDisk(const std::string& path, os::NativeHandle) {
    DeviceIdentity identity;
    fs::path disk = sysfsFolder(path);
    if (disk.empty()) return identity;
    if (fs::exists(disk / "partition")) disk = disk.parent_path();
    identity.model = attribute(disk / "device" / "model");
    identity.serial = attribute(disk / "device" / "serial");
    if (identity.serial.empty()) identity.serial = serialFromVpdPage(disk / "device" / "vpd_pg80");
    const std::string physical = attribute(disk / "queue" / "physical_block_size");
    if (!physical.empty() && physical.find_first_not_of("0123456789") == std::string::npos &&
        physical.size() < 10)
        identity.physicalSectorBytes = static_cast<uint32_t>(std::stoul(physical));
    return identity;
}

}  // namespace host

// The drives `drivediag list` shows: whole disks a test could run on.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace host {

struct DriveInfo {
    std::string path;   // what --device takes: /dev/sda, \\.\PhysicalDrive0
    std::string model;  // as the system names it; "" when unknown
    uint64_t sizeBytes = 0;
    uint32_t bytesPerSector = 0;
};

// The drives of this machine, in the system's order. Linux: the whole disks of /sys/block;
// Windows: \\.\PhysicalDrive0 onwards that can be opened (usually needs administrator rights).
std::vector<DriveInfo> listDrives();

// The whole disks described by a /sys/block-shaped tree at `sysBlock`, sorted by name, with
// paths under `devDirectory`. RAM disks (ram*, zram*), loop devices without a backing file and
// devices of size 0 (an empty card reader or optical drive) are left out. A loop device's model
// is "loop: " and its backing file.
std::vector<DriveInfo> scanSysBlock(const std::filesystem::path& sysBlock,
                                    const std::string& devDirectory);

}  // namespace host

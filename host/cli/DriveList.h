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
    bool optical = false;  // a CD/DVD/BD drive, for the read-write test
    std::string medium;    // optical: the disc in it ("DVD+RW (profile 0x001A)", "no disc")
};

// The drives of this machine, in the system's order. Linux: the whole disks and optical drives
// of /sys/block; Windows: \\.\PhysicalDrive0 onwards that can be opened (usually needs
// administrator rights), then \\.\CdRom0 onwards. An optical drive's medium is asked of it.
std::vector<DriveInfo> listDrives();

// The whole disks described by a /sys/block-shaped tree at `sysBlock`, sorted by name, with
// paths under `devDirectory`. RAM disks (ram*, zram*), loop devices without a backing file and
// devices of size 0 (an empty card reader) are left out; optical drives (sr*) are listed
// whatever their size, marked optical, their medium left for the caller to ask. A loop device's
// model is "loop: " and its backing file.
std::vector<DriveInfo> scanSysBlock(const std::filesystem::path& sysBlock,
                                    const std::string& devDirectory);

}  // namespace host

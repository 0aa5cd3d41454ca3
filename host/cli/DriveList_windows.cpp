#include <string>

#include "cli/DriveList.h"
#include "optical/CurrentProfile.h"
#include "optical/OpticalMedia.h"
#include "os/Device.h"

namespace host {
namespace {

// Physical drive numbers are small; stop looking after this many in a row are missing.
constexpr int kMaxMissingInARow = 8;

}  // namespace

std::vector<DriveInfo> listDrives() {
    std::vector<DriveInfo> drives;
    int missing = 0;
    for (int number = 0; missing < kMaxMissingInARow; ++number) {
        const std::string path = "\\\\.\\PhysicalDrive" + std::to_string(number);
        // Access 0 asks only the size and needs no administrator rights.
        os::OpenResult opened = os::openDevice(path, os::kQuery);
        if (!opened.handle.valid()) {
            ++missing;
            continue;
        }
        missing = 0;
        const os::GeometryResult geometry = os::queryDiskGeometry(opened.handle);
        DriveInfo drive;
        drive.path = path;
        drive.sizeBytes = geometry.geometry.totalBytes;
        drive.bytesPerSector = geometry.geometry.bytesPerSector;
        drives.push_back(std::move(drive));
    }
    missing = 0;
    for (int number = 0; missing < kMaxMissingInARow; ++number) {
        const std::string path = "\\\\.\\CdRom" + std::to_string(number);
        if (!os::openDevice(path, os::kQuery).handle.valid()) {
            ++missing;
            continue;
        }
        missing = 0;
        DriveInfo drive;
        drive.path = path;
        drive.bytesPerSector = 2048;
        drive.optical = true;
        drive.medium = profileText(currentProfileOf(path));
        drives.push_back(std::move(drive));
    }
    return drives;
}

}  // namespace host

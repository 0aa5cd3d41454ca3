#include "cli/DriveList.h"
#include "optical/CurrentProfile.h"
#include "optical/OpticalMedia.h"

namespace host {

std::vector<DriveInfo> listDrives() {
    std::vector<DriveInfo> drives = scanSysBlock("/sys/block", "/dev");
    for (DriveInfo& drive : drives) {
        if (drive.optical) drive.medium = profileText(currentProfileOf(drive.path));
    }
    return drives;
}

}  // namespace host

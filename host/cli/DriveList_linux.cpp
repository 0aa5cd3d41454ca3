#include "cli/DriveList.h"

namespace host {

std::vector<DriveInfo> listDrives() { return scanSysBlock("/sys/block", "/dev"); }

}  // namespace host

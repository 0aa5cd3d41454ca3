// Which loop devices show a given image file as a disk. Linux only (LoopBacking_linux.cpp).
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace libStorage::detail {

struct LoopDevice {
    std::string path;  // its node, /dev/loopN
    dev_t number = 0;  // its device number
};

// Every attached loop device whose backing file is the file with inode `inode` on the
// filesystem of device number `fileSystem` (a stat's st_dev and st_ino). The kernel's own
// record of the backing file is asked first (LOOP_GET_STATUS64); where the node cannot be
// opened, the backing file's path from sysfs is looked up instead. Never fails: a loop device
// that cannot be asked either way is left out.
std::vector<LoopDevice> loopDevicesBackedBy(dev_t fileSystem, ino_t inode);

}  // namespace libStorage::detail

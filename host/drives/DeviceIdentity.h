// What the operating system says about the disk behind a path: its model, serial number and
// physical sector size, for the header of a report. DeviceIdentity_linux.cpp and
// DeviceIdentity_windows.cpp implement it; CMake picks one.
#pragma once

#include <cstdint>
#include <string>

#include "os/NativeHandle.h"

namespace host {

struct DeviceIdentity {
    std::string model;                 // "" when the system does not say
    std::string serial;                // "" when the system does not say
    uint32_t physicalSectorBytes = 0;  // 0 when the system does not say
};

// The identity of the disk `path` (UTF-8) names, asked through `handle`, an open handle on it.
// A partition answers for the disk that holds it. Never fails: what cannot be found is left
// empty.
DeviceIdentity identifyDisk(const std::string& path, os::NativeHandle handle);

// The kernel's devices built on the disk `path` names or on its partitions ("dm-0, md127": a
// device mapper, LVM or RAID set holds them open), or "" when there are none or the system
// does not say.
std::string holdersOf(const std::string& path);

}  // namespace host

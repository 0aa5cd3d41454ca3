// The profile of the disc in an optical drive, asked by name without taking the drive.
#pragma once

#include <cstdint>
#include <string>

namespace host {

// The current MMC profile of the drive `deviceName` (UTF-8: "/dev/sr0", "\\.\CdRom0"), 0 when it
// has no disc or does not answer.
uint16_t currentProfileOf(const std::string& deviceName);

}  // namespace host

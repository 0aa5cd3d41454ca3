// How the operating system's answers to opening a device and to a pass-through request map to
// the library's statuses. One implementation per platform: PassThroughErrors_linux.cpp takes
// errno values of open() and the SG_IO ioctl, PassThroughErrors_windows.cpp the Win32 error
// codes of CreateFileW and DeviceIoControl. Plain functions, so tests can feed them every code.
#pragma once

#include <cstdint>

#include "scsi/Status.h"

namespace kivscsi::detail {

// Why the device could not be opened.
Status statusForOpenError(uint32_t error);

// Why a pass-through request failed before the device answered.
Status statusForPassThroughError(uint32_t error);

}  // namespace kivscsi::detail

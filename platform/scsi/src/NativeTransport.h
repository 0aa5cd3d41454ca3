// The operating system's SCSI pass-through; one implementation per platform
// (NativeTransport_linux.cpp, NativeTransport_windows.cpp).
#pragma once

#include <string>

#include "scsi/Transport.h"

namespace kivscsi {

// Opens `deviceName` (UTF-8) for pass-through commands.
OpenResult openNativeTransport(const std::string& deviceName);

}  // namespace kivscsi

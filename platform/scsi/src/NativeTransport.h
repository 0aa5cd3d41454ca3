// The operating system's SCSI pass-through; one implementation per platform
// (NativeTransport_linux.cpp, NativeTransport_windows.cpp).
#pragma once

#include <string>

#include "os/NativeHandle.h"
#include "scsi/Transport.h"

namespace kivscsi {

// Opens `deviceName` (UTF-8) for pass-through commands; the transport closes it.
OpenResult openNativeTransport(const std::string& deviceName);

// A transport over a handle somebody else holds open (a drive that claimed the device); the
// transport never closes it. REQUIRES: the handle stays open while the transport lives.
OpenResult borrowNativeTransport(os::NativeHandle handle);

}  // namespace kivscsi

// The process-wide table of devices some object holds open, by device name. Code that knows
// only a name (the SCSI library, a second object on the same drive) looks here before opening
// a handle of its own, so that a drive it has claimed exclusively stays reachable and a second
// open never takes the claim away.
#pragma once

#include <string>

#include "os/Export.h"
#include "os/NativeHandle.h"

namespace os {

// Enters `handle` (the address of the holder's handle variable; not owned, must stay valid and
// open until removed) under `deviceName`, replacing an earlier entry of that name.
OS_API void registerOpenDevice(const std::string& deviceName, NativeHandle* handle);
// Removes the entry; true when there was one.
OS_API bool unregisterOpenDevice(const std::string& deviceName);
// The entered address, or null when `deviceName` has no entry.
OS_API NativeHandle* findOpenDevice(const std::string& deviceName);
// The handle entered under `deviceName` as it is now, or invalidNativeHandle() when there is no
// entry or the holder's variable holds no open handle.
OS_API NativeHandle openDeviceHandle(const std::string& deviceName);

}  // namespace os

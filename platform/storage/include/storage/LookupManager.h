// libStorage::LookupManager: the process-wide table of open devices by name, so that code which
// only knows a device's name (the SCSI layer, a second object on the same drive) finds the
// handle that is already open for it. A facade over os/OpenDevices.h: the SCSI library sends
// the commands for an entered device through the entered handle instead of opening its own.
#pragma once

#include <string>

#include "os/NativeHandle.h"
#include "storage/Export.h"

namespace libStorage {

class STORAGE_API LookupManager {
public:
    // Enters `handle` (the address of the caller's handle variable; not owned, must stay valid
    // until removed) under `deviceName`, replacing an earlier entry of that name.
    static void insert(const std::string& deviceName, os::NativeHandle* handle);
    static bool contains(const std::string& deviceName);
    // Removes the entry; true when there was one.
    static bool remove(const std::string& deviceName);
    // The entered address, or null when `deviceName` has no entry.
    static os::NativeHandle* get(const std::string& deviceName);

    LookupManager() = delete;
};

}  // namespace libStorage

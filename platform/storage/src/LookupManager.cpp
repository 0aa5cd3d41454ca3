#include "storage/LookupManager.h"

#include "os/OpenDevices.h"

namespace libStorage {

// The table itself lives in the os layer, where the SCSI library (which may not depend on
// this library) finds the same entries.

void LookupManager::insert(const std::string& deviceName, os::NativeHandle* handle) {
    os::registerOpenDevice(deviceName, handle);
}

bool LookupManager::contains(const std::string& deviceName) {
    return os::findOpenDevice(deviceName) != nullptr;
}

bool LookupManager::remove(const std::string& deviceName) {
    return os::unregisterOpenDevice(deviceName);
}

os::NativeHandle* LookupManager::get(const std::string& deviceName) {
    return os::findOpenDevice(deviceName);
}

}  // namespace libStorage

#include <windows.h>
#include <winioctl.h>

#include "Hold.h"
#include "LockedVolume_windows.h"
#include "os/DeviceControl.h"
#include "os/EmulatedDevice.h"

namespace libStorage::detail {

std::unique_ptr<Hold> claimExclusive(os::NativeHandle handle) {
    if (os::emulatedDeviceFor(handle)) {
        os::OpenResult claimed = os::reopenExclusive(handle);
        if (!claimed.error.ok()) {
            return nullptr;
        }
        return std::make_unique<HandleHold>(std::move(claimed.handle));
    }
    if (!os::controlDevice(handle, FSCTL_LOCK_VOLUME, nullptr, 0, nullptr, 0).ok()) {
        return nullptr;
    }
    return std::make_unique<LockedVolume>(static_cast<HANDLE>(handle));
}

}  // namespace libStorage::detail

#include <windows.h>
#include <winioctl.h>

#include "Hold.h"
#include "os/DeviceControl.h"
#include "os/EmulatedDevice.h"

namespace libStorage::detail {
namespace {

// The volume behind a device handle, locked until this object is destroyed.
class LockedVolume final : public Hold {
public:
    explicit LockedVolume(HANDLE volume) : volume_(volume) {}
    ~LockedVolume() override {
        os::controlDevice(volume_, FSCTL_UNLOCK_VOLUME, nullptr, 0, nullptr, 0);
    }

private:
    HANDLE volume_;  // not owned
};

}  // namespace

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

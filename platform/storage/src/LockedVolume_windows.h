// A volume locked through a handle somebody else owns: unlocked when the hold ends, while the
// handle is still open. Windows only.
#pragma once

#include <windows.h>
#include <winioctl.h>

#include "Hold.h"
#include "os/DeviceControl.h"

namespace libStorage::detail {

class LockedVolume final : public Hold {
public:
    explicit LockedVolume(HANDLE volume) : volume_(volume) {}
    ~LockedVolume() override {
        os::controlDevice(volume_, FSCTL_UNLOCK_VOLUME, nullptr, 0, nullptr, 0);
    }
    LockedVolume(const LockedVolume&) = delete;
    LockedVolume& operator=(const LockedVolume&) = delete;

private:
    HANDLE volume_;  // not owned
};

}  // namespace libStorage::detail

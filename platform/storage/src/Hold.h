// Something taken from the system (an exclusive open, locked volumes) that is given back when
// the object is destroyed.
#pragma once

#include <memory>
#include <string>

#include "os/Device.h"

namespace libStorage::detail {

class Hold {
public:
    virtual ~Hold() = default;
};

// Holds an open device handle; closing it gives the device back.
class HandleHold final : public Hold {
public:
    explicit HandleHold(os::DeviceHandle handle) : handle_(std::move(handle)) {}

private:
    os::DeviceHandle handle_;
};

// Takes the disk or image `path` (UTF-8) away from everybody else, per platform. Returns null
// and sets `failure` (for a person) when it cannot. `driveHandle` is the drive's own open
// handle to it (not owned; it must stay open while the hold lives), or invalidNativeHandle():
// Windows takes what cannot be taken beside an open handle through that handle; on Linux an
// exclusive open or flock coexists with the drive's plain open, so the handle is not needed.
std::unique_ptr<Hold> lockDisk(const std::string& path, os::NativeHandle driveHandle,
                               std::wstring& failure);

// Exclusive access to the device behind an open handle, per platform; null when refused.
std::unique_ptr<Hold> claimExclusive(os::NativeHandle handle);

}  // namespace libStorage::detail

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
// and sets `failure` (for a person) when it cannot.
std::unique_ptr<Hold> lockDisk(const std::string& path, std::wstring& failure);

// lockDisk, for a device the drive already holds open through `driveHandle` (not owned; it
// must stay open while the hold lives): Windows takes what cannot be taken beside an open
// handle through that handle. invalidNativeHandle() when the drive holds none.
std::unique_ptr<Hold> lockDiskWith(const std::string& path, os::NativeHandle driveHandle,
                                   std::wstring& failure);

// Exclusive access to the device behind an open handle, per platform; null when refused.
std::unique_ptr<Hold> claimExclusive(os::NativeHandle handle);

}  // namespace libStorage::detail

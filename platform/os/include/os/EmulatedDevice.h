// In-process emulated devices: objects that stand in for a device so that openDevice,
// queryDiskGeometry, readAt and writeAt (and the SCSI transport) answer for them as for real
// hardware. They register under a name ("sim:cd0", "\\.\SimCdRom0"); opening that name finds
// them before the operating system is asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "os/Device.h"
#include "os/Export.h"
#include "os/NativeHandle.h"

namespace os {

class OS_API EmulatedDevice {
public:
    virtual ~EmulatedDevice();
    // Asked on every open with the os::Access flags; a failed Error refuses the open.
    // Exclusivity among handles is enforced by the registry, not here.
    virtual Error open(uint32_t access);
    // The device's geometry; the default answers errorCodeNotSupported().
    virtual GeometryResult geometry();
    // Byte-addressed access; the defaults answer errorCodeNotSupported().
    virtual IoResult readAt(uint64_t offset, void* buffer, size_t size);
    virtual IoResult writeAt(uint64_t offset, const void* buffer, size_t size);
};

// Registers `device` under `name` (UTF-8), replacing an earlier registration of that name.
// Open handles keep the device they were opened on alive.
OS_API void registerEmulatedDevice(const std::string& name, std::shared_ptr<EmulatedDevice> device);
// Removes the registration; true when there was one.
OS_API bool unregisterEmulatedDevice(const std::string& name);
// The device registered under `name`, or null.
OS_API std::shared_ptr<EmulatedDevice> findEmulatedDevice(const std::string& name);
// The device behind a handle that openDevice returned for an emulated name, or null.
OS_API std::shared_ptr<EmulatedDevice> emulatedDeviceFor(NativeHandle handle);

}  // namespace os

// Opening a device: a handle a drive holds open for it first, then an emulated SCSI target by
// its registered name, then the native pass-through of the platform.
#include "scsi/Transport.h"

#include "NativeTransport.h"
#include "TargetTransport.h"
#include "os/EmulatedDevice.h"
#include "os/OpenDevices.h"

namespace kivscsi {
namespace {

OpenResult targetTransport(std::shared_ptr<os::EmulatedDevice> device) {
    if (dynamic_cast<ScsiTarget*>(device.get()) == nullptr) {
        return {nullptr, kStatusNotScsiDevice};
    }
    return {std::make_unique<TargetTransport>(std::move(device)), kStatusGood};
}

}  // namespace

ScsiTarget::~ScsiTarget() = default;
Transport::~Transport() = default;

OpenResult openTransport(const std::string& deviceName) {
    if (deviceName.empty()) return {nullptr, kStatusBadDeviceName};
    // A claimed device refuses (Windows) or loses its claim to (Linux: the tray lock ends with
    // the last close) a handle of our own: commands go through the holder's handle.
    const os::NativeHandle held = os::openDeviceHandle(deviceName);
    if (held != os::invalidNativeHandle()) {
        if (std::shared_ptr<os::EmulatedDevice> device = os::emulatedDeviceFor(held)) {
            return targetTransport(std::move(device));
        }
        return borrowNativeTransport(held);
    }
    if (std::shared_ptr<os::EmulatedDevice> device = os::findEmulatedDevice(deviceName)) {
        return targetTransport(std::move(device));
    }
    return openNativeTransport(deviceName);
}

}  // namespace kivscsi

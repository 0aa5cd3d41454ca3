// Opening a device: an emulated SCSI target by its registered name first, then the native
// pass-through of the platform.
#include "scsi/Transport.h"

#include "NativeTransport.h"
#include "TargetTransport.h"
#include "os/EmulatedDevice.h"

namespace kivscsi {

ScsiTarget::~ScsiTarget() = default;
Transport::~Transport() = default;

OpenResult openTransport(const std::string& deviceName) {
    if (deviceName.empty()) return {nullptr, kStatusBadDeviceName};
    if (std::shared_ptr<os::EmulatedDevice> device = os::findEmulatedDevice(deviceName)) {
        if (dynamic_cast<ScsiTarget*>(device.get()) == nullptr) {
            return {nullptr, kStatusNotScsiDevice};
        }
        return {std::make_unique<TargetTransport>(std::move(device)), kStatusGood};
    }
    return openNativeTransport(deviceName);
}

}  // namespace kivscsi

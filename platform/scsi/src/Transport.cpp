// The gate every command passes, and opening a device: a handle a drive holds open for it
// first, then an emulated SCSI target by its registered name, then the native pass-through of
// the platform.
#include "scsi/Transport.h"

#include <algorithm>

#include "NativeTransport.h"
#include "TargetTransport.h"
#include "os/Clock.h"
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

bool isMalformed(const ScsiCommand& command) {
    return command.cdbLength == 0 || command.cdbLength > kMaxCdbLength ||
           (command.direction != DataDirection::None && command.bufferLength > 0 &&
            command.buffer == nullptr);
}

}  // namespace

ScsiTarget::~ScsiTarget() = default;
Transport::~Transport() = default;

ScsiResponse Transport::send(const ScsiCommand& command) {
    ScsiResponse response;
    if (isMalformed(command)) {
        response.transportStatus = kStatusInvalidRequest;
        return response;
    }
    const uint64_t start = os::clock().monotonicMilliseconds();
    deliver(command, response);
    const uint64_t elapsed = os::clock().monotonicMilliseconds() - start;
    response.durationMs = static_cast<uint32_t>(std::min<uint64_t>(elapsed, UINT32_MAX));

    // No transport is trusted further than a real drive: clamp what it claims.
    if (command.direction == DataDirection::None) response.residual = 0;
    response.residual = std::min(response.residual, command.bufferLength);
    response.senseLength =
        static_cast<uint8_t>(std::min<size_t>(response.senseLength, kMaxSenseLength));
    if (deadline_ == Deadline::JudgedOnClock && response.transportStatus == kStatusGood &&
        elapsed > command.timeoutMs) {
        response.transportStatus = kStatusTimedOut;
    }
    return response;
}

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

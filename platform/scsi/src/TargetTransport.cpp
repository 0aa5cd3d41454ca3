#include "TargetTransport.h"

#include <algorithm>

#include "os/Clock.h"

namespace kivscsi {

TargetTransport::TargetTransport(std::shared_ptr<os::EmulatedDevice> device)
    : device_(std::move(device)), target_(dynamic_cast<ScsiTarget*>(device_.get())) {}

ScsiResponse TargetTransport::send(const ScsiCommand& command) {
    ScsiResponse response;
    if (command.cdbLength == 0 || command.cdbLength > kMaxCdbLength ||
        (command.direction != DataDirection::None && command.bufferLength > 0 &&
         command.buffer == nullptr)) {
        response.transportStatus = kStatusInvalidRequest;
        return response;
    }
    const uint64_t start = os::clock().monotonicMilliseconds();
    target_->execute(command, response);
    const uint64_t elapsed = os::clock().monotonicMilliseconds() - start;
    response.durationMs = static_cast<uint32_t>(std::min<uint64_t>(elapsed, UINT32_MAX));

    // A target is trusted no further than a real drive: clamp what it claims.
    if (command.direction == DataDirection::None) response.residual = 0;
    response.residual = std::min(response.residual, command.bufferLength);
    response.senseLength =
        static_cast<uint8_t>(std::min<size_t>(response.senseLength, kMaxSenseLength));
    if (response.transportStatus == kStatusGood && elapsed > command.timeoutMs) {
        response.transportStatus = kStatusTimedOut;
    }
    return response;
}

}  // namespace kivscsi

// The transport to an in-process emulated device: calls its ScsiTarget directly. The target
// cannot be interrupted, so the gate judges its deadline by the time it let pass on the clock.
#pragma once

#include <memory>

#include "os/EmulatedDevice.h"
#include "scsi/Transport.h"

namespace kivscsi {

class TargetTransport : public Transport {
public:
    // REQUIRES: `device` derives from ScsiTarget. Keeps the device alive while open.
    explicit TargetTransport(std::shared_ptr<os::EmulatedDevice> device);

private:
    void deliver(const ScsiCommand& command, ScsiResponse& response) override;

    std::shared_ptr<os::EmulatedDevice> device_;
    ScsiTarget* target_;
};

}  // namespace kivscsi

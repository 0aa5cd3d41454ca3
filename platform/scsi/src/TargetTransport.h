// The transport to an in-process emulated device: calls its ScsiTarget directly and measures
// the time the target let pass on the one clock.
#pragma once

#include <memory>

#include "os/EmulatedDevice.h"
#include "scsi/Transport.h"

namespace kivscsi {

class TargetTransport : public Transport {
public:
    // REQUIRES: `device` derives from ScsiTarget. Keeps the device alive while open.
    explicit TargetTransport(std::shared_ptr<os::EmulatedDevice> device);
    ScsiResponse send(const ScsiCommand& command) override;

private:
    std::shared_ptr<os::EmulatedDevice> device_;
    ScsiTarget* target_;
};

}  // namespace kivscsi

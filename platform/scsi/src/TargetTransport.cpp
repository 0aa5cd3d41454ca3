#include "TargetTransport.h"

namespace kivscsi {

TargetTransport::TargetTransport(std::shared_ptr<os::EmulatedDevice> device)
    : Transport(Deadline::JudgedOnClock),
      device_(std::move(device)),
      target_(dynamic_cast<ScsiTarget*>(device_.get())) {}

void TargetTransport::deliver(const ScsiCommand& command, ScsiResponse& response) {
    target_->execute(command, response);
}

}  // namespace kivscsi

// An emulated SCSI device for the tests: records every command it receives and answers with a
// scripted reply.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "os/Clock.h"
#include "os/EmulatedDevice.h"
#include "scsi/Transport.h"

namespace scsitest {

struct RecordedCommand {
    std::vector<uint8_t> cdb;
    kivscsi::DataDirection direction = kivscsi::DataDirection::None;
    uint32_t bufferLength = 0;
    uint32_t timeoutMs = 0;
    std::vector<uint8_t> dataOut;  // what a data-out command carried
};

struct Reply {
    std::vector<uint8_t> dataIn;  // copied into the buffer, cut to its length
    uint8_t scsiStatus = kivscsi::kScsiGood;
    std::vector<uint8_t> sense;
    kivscsi::Status transportStatus = kivscsi::kStatusGood;
    uint32_t costMs = 0;  // time the command takes on the clock
    // When set, the residual the target claims instead of the honest one.
    bool overrideResidual = false;
    uint32_t residual = 0;
};

class RecordingTarget : public os::EmulatedDevice, public kivscsi::ScsiTarget {
public:
    void execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) override {
        RecordedCommand recorded;
        recorded.cdb.assign(command.cdb.begin(), command.cdb.begin() + command.cdbLength);
        recorded.direction = command.direction;
        recorded.bufferLength = command.bufferLength;
        recorded.timeoutMs = command.timeoutMs;
        const auto* bytes = static_cast<const uint8_t*>(command.buffer);
        if (command.direction == kivscsi::DataDirection::ToDevice && bytes != nullptr) {
            recorded.dataOut.assign(bytes, bytes + command.bufferLength);
        }
        commands.push_back(recorded);

        if (reply.costMs != 0) os::sleepMilliseconds(reply.costMs);
        response.transportStatus = reply.transportStatus;
        response.scsiStatus = reply.scsiStatus;
        response.senseLength =
            static_cast<uint8_t>(std::min<size_t>(reply.sense.size(), response.sense.size()));
        std::copy_n(reply.sense.begin(), response.senseLength, response.sense.begin());
        if (command.direction == kivscsi::DataDirection::FromDevice) {
            const size_t count = std::min<size_t>(reply.dataIn.size(), command.bufferLength);
            std::copy_n(reply.dataIn.begin(), count, static_cast<uint8_t*>(command.buffer));
            response.residual = command.bufferLength - static_cast<uint32_t>(count);
        }
        if (reply.overrideResidual) response.residual = reply.residual;
    }

    std::vector<RecordedCommand> commands;
    Reply reply;
};

// Registers a fresh RecordingTarget under `name` for the life of the object.
class RegisteredTarget {
public:
    explicit RegisteredTarget(std::string name = "sim:scsi-test")
        : name_(std::move(name)), target_(std::make_shared<RecordingTarget>()) {
        os::registerEmulatedDevice(name_, target_);
    }
    ~RegisteredTarget() { os::unregisterEmulatedDevice(name_); }
    RegisteredTarget(const RegisteredTarget&) = delete;
    RegisteredTarget& operator=(const RegisteredTarget&) = delete;

    const char* name() const { return name_.c_str(); }
    RecordingTarget& target() { return *target_; }

private:
    std::string name_;
    std::shared_ptr<RecordingTarget> target_;
};

}  // namespace scsitest

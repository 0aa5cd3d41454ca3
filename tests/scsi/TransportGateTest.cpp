// The one gate every command passes, whatever transport stands behind it: malformed commands
// are refused unsent with the same status, and what a device claims is timed and clamped alike.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "scsi/Transport.h"
#include "support/RecordingTarget.h"
#include "support/ScopedVirtualClock.h"

namespace {

using kivscsi::DataDirection;
using kivscsi::ScsiCommand;
using kivscsi::ScsiResponse;
using kivscsi::Status;

// A transport whose device answers with a scripted response after a scripted time.
class FakeTransport : public kivscsi::Transport {
public:
    using Transport::Deadline;
    explicit FakeTransport(Deadline deadline) : Transport(deadline) {}

    ScsiResponse answer;
    uint32_t costMs = 0;
    size_t deliveries = 0;

private:
    void deliver(const ScsiCommand& /*command*/, ScsiResponse& response) override {
        ++deliveries;
        if (costMs != 0) os::sleepMilliseconds(costMs);
        response = answer;
    }
};

class TransportGateTest : public ::testing::Test {
protected:
    testsupport::ScopedVirtualClock clock_;
};

ScsiCommand readCommand(uint8_t cdbLength, void* buffer, uint32_t bufferLength) {
    ScsiCommand command;
    command.cdbLength = cdbLength;
    command.direction = DataDirection::FromDevice;
    command.buffer = buffer;
    command.bufferLength = bufferLength;
    command.timeoutMs = 1000;
    return command;
}

TEST_F(TransportGateTest, EveryTransportRefusesTheSameCommandsUnsent) {
    uint8_t buffer[4];
    struct Case {
        const char* name;
        ScsiCommand command;
        Status expected;  // kStatusGood: the command reaches the device
    };
    ScsiCommand dataOutWithoutBuffer = readCommand(10, nullptr, 8);
    dataOutWithoutBuffer.direction = DataDirection::ToDevice;
    ScsiCommand noDataPhaseWithLength = readCommand(6, nullptr, 8);
    noDataPhaseWithLength.direction = DataDirection::None;
    const std::vector<Case> cases = {
        {"no command block", readCommand(0, buffer, 4), kivscsi::kStatusInvalidRequest},
        {"command block one byte too long", readCommand(17, buffer, 4),
         kivscsi::kStatusInvalidRequest},
        {"command block far too long", readCommand(255, buffer, 4), kivscsi::kStatusInvalidRequest},
        {"data in without buffer", readCommand(10, nullptr, 4), kivscsi::kStatusInvalidRequest},
        {"data out without buffer", dataOutWithoutBuffer, kivscsi::kStatusInvalidRequest},
        {"shortest command block", readCommand(1, buffer, 4), kivscsi::kStatusGood},
        {"longest command block", readCommand(16, buffer, 4), kivscsi::kStatusGood},
        {"empty data phase without buffer", readCommand(10, nullptr, 0), kivscsi::kStatusGood},
        {"no data phase, length ignored", noDataPhaseWithLength, kivscsi::kStatusGood},
    };

    scsitest::RegisteredTarget device;
    kivscsi::OpenResult emulated = kivscsi::openTransport(device.name());
    ASSERT_EQ(emulated.status, kivscsi::kStatusGood);
    FakeTransport fake(FakeTransport::Deadline::KeptByDevice);
    struct UnderTest {
        const char* name;
        kivscsi::Transport& transport;
        std::function<size_t()> deliveries;
    };
    const std::vector<UnderTest> transports = {
        {"emulated target", *emulated.transport, [&] { return device.target().commands.size(); }},
        {"fake transport", fake, [&] { return fake.deliveries; }},
    };

    for (const UnderTest& t : transports) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(t.name) + ": " + c.name);
            const size_t before = t.deliveries();
            const ScsiResponse response = t.transport.send(c.command);
            EXPECT_EQ(response.transportStatus, c.expected);
            EXPECT_EQ(t.deliveries() - before, c.expected == kivscsi::kStatusGood ? 1u : 0u);
        }
    }
}

TEST_F(TransportGateTest, AnswersAreTimedAndClampedOnce) {
    using Deadline = FakeTransport::Deadline;
    struct Case {
        const char* name;
        Deadline deadline;
        DataDirection direction;
        uint32_t costMs;
        ScsiResponse answer;
        Status expectedStatus;
        uint32_t expectedResidual;
        uint8_t expectedSenseLength;
    };
    ScsiResponse good;
    ScsiResponse overlongResidual;
    overlongResidual.residual = 9;
    ScsiResponse residual3;
    residual3.residual = 3;
    ScsiResponse overlongSense;
    overlongSense.scsiStatus = kivscsi::kScsiCheckCondition;
    overlongSense.senseLength = 200;
    ScsiResponse gone;
    gone.transportStatus = kivscsi::kStatusDeviceGone;
    const std::vector<Case> cases = {
        {"residual above the buffer", Deadline::KeptByDevice, DataDirection::FromDevice, 0,
         overlongResidual, kivscsi::kStatusGood, 8, 0},
        {"residual kept within the buffer", Deadline::KeptByDevice, DataDirection::FromDevice, 0,
         residual3, kivscsi::kStatusGood, 3, 0},
        {"residual without data phase", Deadline::KeptByDevice, DataDirection::None, 0, residual3,
         kivscsi::kStatusGood, 0, 0},
        {"sense longer than the response holds", Deadline::KeptByDevice, DataDirection::FromDevice,
         0, overlongSense, kivscsi::kStatusGood, 0, kivscsi::kMaxSenseLength},
        {"judged on the clock, one ms late", Deadline::JudgedOnClock, DataDirection::FromDevice,
         1001, good, kivscsi::kStatusTimedOut, 0, 0},
        {"judged on the clock, exactly in time", Deadline::JudgedOnClock, DataDirection::FromDevice,
         1000, good, kivscsi::kStatusGood, 0, 0},
        {"judged on the clock, late and gone", Deadline::JudgedOnClock, DataDirection::FromDevice,
         5000, gone, kivscsi::kStatusDeviceGone, 0, 0},
        {"kept by the device, late answer stands", Deadline::KeptByDevice,
         DataDirection::FromDevice, 5000, good, kivscsi::kStatusGood, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FakeTransport transport(c.deadline);
        transport.answer = c.answer;
        transport.costMs = c.costMs;
        uint8_t buffer[8];
        ScsiCommand command = readCommand(10, buffer, sizeof(buffer));
        command.direction = c.direction;
        const ScsiResponse response = transport.send(command);
        EXPECT_EQ(response.transportStatus, c.expectedStatus);
        EXPECT_EQ(response.residual, c.expectedResidual);
        EXPECT_EQ(response.senseLength, c.expectedSenseLength);
        EXPECT_EQ(response.durationMs, c.costMs);
    }
}

}  // namespace

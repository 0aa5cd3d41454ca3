// Choosing the transport by name, the library's own failures, what the device returned, and
// the trace of every command to the installed sink.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "scsi/Scsi.h"
#include "scsi/TracingTransport.h"
#include "support/RecordingTarget.h"
#include "support/ScopedVirtualClock.h"
#include "support/TempFile.h"

namespace {

using kivscsi::Status;

// A device of the os layer that does not answer SCSI commands.
class PlainEmulatedDevice : public os::EmulatedDevice {};

class TransportTest : public ::testing::Test {
protected:
    testsupport::ScopedVirtualClock clock_;
};

TEST_F(TransportTest, DeviceNamesThatReachNoTarget) {
    os::registerEmulatedDevice("sim:plain", std::make_shared<PlainEmulatedDevice>());
    const testsupport::TempDirectory directory("scsi-not-a-device");
    const std::string directoryName = directory.path().string();
    const testsupport::TempFile plainFile("scsi-plain-file", "data");
    struct Case {
        const char* name;
        const char* deviceName;
        Status expected;
    };
    const std::vector<Case> cases = {
        {"null name", nullptr, kivscsi::kStatusBadDeviceName},
        {"empty name", "", kivscsi::kStatusBadDeviceName},
        {"emulated but not SCSI", "sim:plain", kivscsi::kStatusNotScsiDevice},
        {"nothing of that name", "sim:no-such-device", kivscsi::kStatusNoSuchDevice},
        {"a directory", directoryName.c_str(), kivscsi::kStatusNotScsiDevice},
        {"a plain file", plainFile.text().c_str(), kivscsi::kStatusNotScsiDevice},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(kivscsi::TestUnitReady({}, c.deviceName), c.expected);
    }
    os::unregisterEmulatedDevice("sim:plain");
}

TEST_F(TransportTest, FailuresReportedByTheTargetOrTheClock) {
    struct Case {
        const char* name;
        scsitest::Reply reply;
        Status expected;
    };
    scsitest::Reply gone;
    gone.transportStatus = kivscsi::kStatusDeviceGone;
    gone.scsiStatus = kivscsi::kScsiCheckCondition;
    gone.sense = {0x70, 0, 0x02, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0x3A, 0x00};
    scsitest::Reply slow;
    slow.costMs = 10'001;
    const std::vector<Case> cases = {
        {"device gone", gone, kivscsi::kStatusDeviceGone},
        {"read slower than its timeout", slow, kivscsi::kStatusTimedOut},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        scsitest::RegisteredTarget device;
        device.target().reply = c.reply;
        uint8_t buffer[2048];
        EXPECT_EQ(kivscsi::ReadBlocksTimedEx({}, device.name(), buffer, sizeof(buffer), 0, 1, 10),
                  c.expected);
    }
}

TEST_F(TransportTest, ReceivedLengthIsAllocationMinusResidual) {
    struct Case {
        const char* name;
        size_t answered;
        bool lie;
        uint32_t claimedResidual;
        uint32_t expectedReceived;
    };
    const std::vector<Case> cases = {
        {"full answer", 20, false, 0, 20},
        {"short answer", 8, false, 0, 8},
        {"empty answer", 0, false, 0, 0},
        {"residual larger than the allocation", 20, true, 1000, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        scsitest::RegisteredTarget device;
        device.target().reply.dataIn.assign(c.answered, 0x11);
        device.target().reply.overrideResidual = c.lie;
        device.target().reply.residual = c.claimedResidual;
        uint8_t buffer[20] = {};
        uint32_t received = 12345;
        EXPECT_EQ(kivscsi::GetEventStatusNotification({}, device.name(), true, 0x10, buffer, 20,
                                                      &received),
                  kivscsi::kStatusGood);
        EXPECT_EQ(received, c.expectedReceived);
    }
}

TEST_F(TransportTest, ReadCapacityAnswers) {
    struct Case {
        const char* name;
        std::vector<uint8_t> answer;
        Status expected;
        uint32_t lastLba;
        uint32_t blockLength;
    };
    const std::vector<Case> cases = {
        {"full", {0x00, 0x23, 0x45, 0x67, 0x00, 0x00, 0x08, 0x00}, 0, 0x234567, 2048},
        {"seven bytes",
         {0x00, 0x23, 0x45, 0x67, 0x00, 0x00, 0x08},
         kivscsi::kStatusShortAnswer,
         7,
         7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        scsitest::RegisteredTarget device;
        device.target().reply.dataIn = c.answer;
        kivscsi::Capacity capacity{7, 7};
        EXPECT_EQ(kivscsi::ReadCapacity({}, device.name(), &capacity), c.expected);
        EXPECT_EQ(capacity.lastLba, c.lastLba);
        EXPECT_EQ(capacity.blockLength, c.blockLength);
    }
}

// Keeps the lines it is given, when it wants them.
class RecordingSink : public kivscsi::TraceSink {
public:
    bool enabled() const override { return wanted; }
    void write(const std::string& line) override { lines.push_back(line); }

    bool wanted = true;
    std::vector<std::string> lines;
};

class TraceTest : public TransportTest {
protected:
    void SetUp() override {
        TransportTest::SetUp();
        previous_ = kivscsi::installTraceSink(sink_);
    }
    void TearDown() override {
        kivscsi::installTraceSink(previous_);
        TransportTest::TearDown();
    }

    std::shared_ptr<RecordingSink> sink_ = std::make_shared<RecordingSink>();
    std::shared_ptr<kivscsi::TraceSink> previous_;
};

TEST_F(TraceTest, EveryCommandIsLoggedWithItsStatus) {
    struct Case {
        const char* name;
        scsitest::Reply reply;
        const char* expected;
    };
    scsitest::Reply good;
    good.costMs = 15;
    good.dataIn.assign(8, 0);
    scsitest::Reply fullAnswer;
    fullAnswer.dataIn.assign(16, 0);
    scsitest::Reply noMedium;
    noMedium.scsiStatus = kivscsi::kScsiCheckCondition;
    noMedium.sense = {0x72, 0x02, 0x3A, 0x01};
    scsitest::Reply gone;
    gone.transportStatus = kivscsi::kStatusDeviceGone;
    const std::vector<Case> cases = {
        {"good", good,
         "sim:trace READ DISC INFORMATION CDB 51 00 00 00 00 00 00 00 10 00 -> 0000 in 15 ms, "
         "residual 8"},
        {"full answer", fullAnswer,
         "sim:trace READ DISC INFORMATION CDB 51 00 00 00 00 00 00 00 10 00 -> 0000 in 0 ms"},
        {"sense", noMedium,
         "sim:trace READ DISC INFORMATION CDB 51 00 00 00 00 00 00 00 10 00 -> 3A01 in 0 ms, "
         "residual 16, sense 72 "
         "02 3A 01"},
        {"gone", gone,
         "sim:trace READ DISC INFORMATION CDB 51 00 00 00 00 00 00 00 10 00 -> AB10 in 0 ms"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        sink_->lines.clear();
        scsitest::RegisteredTarget device("sim:trace");
        device.target().reply = c.reply;
        uint8_t buffer[16];
        kivscsi::ReadDiscInformation({}, device.name(), buffer, sizeof(buffer));
        EXPECT_EQ(sink_->lines, std::vector<std::string>{c.expected});
    }
}

TEST_F(TraceTest, CommandsAreNamedAndUnknownOnesShownByTheirBytesAlone) {
    struct Case {
        const char* name;
        std::function<void(const char* device, uint8_t* buffer)> send;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"track information",
         [](auto device, auto buffer) {
             kivscsi::ReadTrackInformation({}, device, 1, 0xFF, buffer, 48);
         },
         "sim:trace READ TRACK INFORMATION CDB 52 01 00 00 00 FF 00 00 30 00 -> 0000 in 0 ms, "
         "residual 48"},
        {"write speeds",
         [](auto device, auto buffer) {
             kivscsi::GetWriteSpeedPerformance({}, device, 2, buffer, 40);
         },
         "sim:trace GET PERFORMANCE CDB AC 00 00 00 00 00 00 00 00 02 03 00 -> 0000 in 0 ms, "
         "residual 40"},
        {"vendor command",
         [](auto device, auto) {
             auto opened = kivscsi::openTransport(device);
             ASSERT_TRUE(opened.transport);
             kivscsi::TracingTransport traced(std::move(opened.transport), device,
                                              kivscsi::installedTraceSink());
             kivscsi::ScsiCommand command;
             command.cdb[0] = 0xE7;
             command.cdbLength = 6;
             traced.send(command);
         },
         "sim:trace CDB E7 00 00 00 00 00 -> 0000 in 0 ms"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        sink_->lines.clear();
        scsitest::RegisteredTarget device("sim:trace");
        uint8_t buffer[48];
        c.send(device.name(), buffer);
        EXPECT_EQ(sink_->lines, std::vector<std::string>{c.expected});
    }
}

TEST_F(TraceTest, CommandsAreSentWhetherOrNotATraceIsWanted) {
    struct Case {
        const char* name;
        bool sinkInstalled;
        bool wanted;
        size_t expectedLines;
    };
    const std::vector<Case> cases = {
        {"sink wants the trace", true, true, 1},
        {"sink wants none", true, false, 0},
        {"no sink", false, true, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        sink_->lines.clear();
        sink_->wanted = c.wanted;
        kivscsi::installTraceSink(c.sinkInstalled ? sink_ : nullptr);
        scsitest::RegisteredTarget device;
        EXPECT_EQ(kivscsi::TestUnitReady({}, device.name()), kivscsi::kStatusGood);
        EXPECT_EQ(sink_->lines.size(), c.expectedLines);
        EXPECT_EQ(device.target().commands.size(), 1u);
    }
}

}  // namespace

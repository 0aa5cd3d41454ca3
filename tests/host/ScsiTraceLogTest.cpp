// drivediag's log carries the SCSI command trace while its log session lasts, at level 1 only.
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/LogSession.h"
#include "kiv/Log.h"
#include "scsi/UnitCommands.h"
#include "support/RecordingTarget.h"
#include "support/ScopedVirtualClock.h"

namespace {

struct Case {
    const char* name;
    std::optional<int> level;
    size_t expectedRecords;
};

// The trace line carries the command's duration: on the virtual clock it is exactly 0 ms.
class ScsiTraceLogTest : public ::testing::Test {
protected:
    testsupport::ScopedVirtualClock clock_;
};

TEST_F(ScsiTraceLogTest, CommandsAreLoggedOnTheTraceLoggerAtLevelOne) {
    const std::vector<Case> cases = {
        {"level 1", 1, 1},
        {"level 2", 2, 0},
    };
    scsitest::RegisteredTarget device("sim:trace-log");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        kiv::MemorySink memory;
        {
            host::LogSession session;
            std::string error;
            ASSERT_TRUE(session.start(std::nullopt, c.level, &error)) << error;
            kiv::LogFactory::addSink(std::make_unique<kiv::MemorySink>(memory));
            EXPECT_EQ(kivscsi::TestUnitReady({}, device.name()), kivscsi::kStatusGood);
        }
        const std::vector<kiv::LogRecord> records = memory.records();
        ASSERT_EQ(records.size(), c.expectedRecords);
        if (c.expectedRecords != 0) {
            EXPECT_EQ(records[0].logger.toUtf8(), "scsi.Trace");
            EXPECT_EQ(records[0].priority, 1);
            EXPECT_EQ(records[0].message.toUtf8(),
                      "sim:trace-log TEST UNIT READY CDB 00 00 00 00 00 00 -> 0000 in 0 ms");
        }
    }
}

// Stands for a sink somebody else installed before the session.
class SilentSink : public kivscsi::TraceSink {
public:
    bool enabled() const override { return false; }
    void write(const std::string& /*line*/) override {}
};

TEST_F(ScsiTraceLogTest, TheSessionRestoresTheSinkItReplaced) {
    const auto earlier = std::make_shared<SilentSink>();
    const std::shared_ptr<kivscsi::TraceSink> before = kivscsi::installTraceSink(earlier);
    {
        host::LogSession session;
        std::string error;
        ASSERT_TRUE(session.start(std::nullopt, std::nullopt, &error)) << error;
        EXPECT_NE(kivscsi::installedTraceSink(), earlier);
    }
    EXPECT_EQ(kivscsi::installedTraceSink(), earlier);
    kivscsi::installTraceSink(before);
}

}  // namespace

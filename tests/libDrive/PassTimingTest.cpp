// PassTiming: the once-a-second report throttle and the time-left estimate from the last 1000
// step durations.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "DriveTestSupport.h"
#include "PassTiming.h"

namespace {

using kivrlibdrive::PassTiming;

class PassTimingTest : public drivetests::DriveTestFixture {
protected:
    // Lets `milliseconds` pass on the virtual clock, also beyond 32 bits.
    static void wait(uint64_t milliseconds) {
        while (milliseconds > 0) {
            const uint32_t slice =
                milliseconds > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<uint32_t>(milliseconds);
            os::sleepMilliseconds(slice);
            milliseconds -= slice;
        }
    }
};

struct Steps {
    uint64_t count;
    uint64_t milliseconds;
};

struct EstimateCase {
    const char* name;
    std::vector<Steps> steps;
    uint64_t remaining;
    uint32_t seconds;
};

TEST_F(PassTimingTest, EstimatesFromAFixedRingOfAThousandSteps) {
    // clang-format off
    const EstimateCase cases[] = {
        {"nothing timed yet", {}, 1000000, 0},
        {"three steps count as a thousandth of the ring", {{3, 500}}, 1000, 1},
        {"under a second rounds down", {{1, 999}}, 1000, 0},
        {"full ring", {{1000, 7}}, 1000, 7},
        {"the oldest step is replaced", {{1000, 7}, {1, 1007}}, 1000, 8},
        {"a whole second lap", {{1000, 3}, {1000, 9}}, 1000, 9},
        {"the sum wraps at 32 bits", {{1000, 5000000}}, 1000000, 705032704},
        {"no steps left", {{10, 100}}, 0, 0},
    };
    // clang-format on
    for (const EstimateCase& c : cases) {
        SCOPED_TRACE(c.name);
        PassTiming timing(L"overflow");
        timing.Start();
        for (const Steps& steps : c.steps) {
            for (uint64_t i = 0; i < steps.count; ++i) {
                wait(steps.milliseconds);
                timing.EndStep();
            }
        }
        EXPECT_EQ(timing.SecondsLeft(c.remaining), c.seconds);
    }
}

TEST_F(PassTimingTest, ReportsFallDueAfterMoreThanASecond) {
    const struct {
        std::vector<uint64_t> stepMs;
        bool due;
    } cases[] = {
        {{}, false}, {{1000}, false}, {{1001}, true}, {{500, 500}, false}, {{500, 501}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.stepMs));
        PassTiming timing(L"overflow");
        timing.Start();
        for (const uint64_t ms : c.stepMs) {
            wait(ms);
            timing.EndStep();
        }
        EXPECT_EQ(timing.IsReportDue(), c.due);
        timing.MarkReported();
        EXPECT_FALSE(timing.IsReportDue());
        wait(5000);
        EXPECT_FALSE(timing.IsReportDue()) << "only finished steps count";
    }
}

TEST_F(PassTimingTest, AStepLongerThan32BitsIsADefect) {
    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    wait(0x100000000ull + 5000000);
    timing.EndStep();
    EXPECT_EQ(logged("DEFECT.GENERIC", 4),
              std::vector<std::string>{"elapsed time overflowed Uint32 or is negative."});
    EXPECT_EQ(timing.SecondsLeft(1000), 5000u) << "the low 32 bits are kept";
    wait(10);
    timing.EndStep();
    EXPECT_EQ(logged("DEFECT.GENERIC", 4).size(), 1u);
}

}  // namespace

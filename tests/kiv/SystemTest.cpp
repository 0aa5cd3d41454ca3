#include <gtest/gtest.h>

#include "kiv/System.h"
#include "support/ScopedVirtualClock.h"

namespace {

TEST(SystemTest, TimeFollowsTheInstalledVirtualClock) {
    testsupport::ScopedVirtualClock clock(1600000000999);
    const struct {
        uint32_t sleepMs;
        uint64_t seconds;
        uint32_t milliseconds;
    } steps[] = {
        {0, 1600000000, 999},
        {1, 1600000001, 0},  // the millisecond carry into the next second
        {999, 1600000001, 999},
        {75000, 1600000076, 999},
    };
    for (const auto& step : steps) {
        kiv::System::sleep(step.sleepMs);
        const kiv::Time now = kiv::System::getCurrentTime();
        EXPECT_EQ(now.seconds, step.seconds) << "after " << step.sleepMs;
        EXPECT_EQ(now.milliseconds, step.milliseconds) << "after " << step.sleepMs;
        EXPECT_EQ(kiv::System::getCurrentTimeMilliseconds(),
                  step.seconds * 1000 + step.milliseconds);
    }
    EXPECT_EQ(clock.elapsedMilliseconds(), 76000u);
}

}  // namespace

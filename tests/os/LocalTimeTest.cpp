#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "os/Clock.h"
#include "support/ScopedVirtualClock.h"

namespace {

// 2024-02-29 23:59:59.999 UTC, a Thursday.
constexpr uint64_t kLeapDayEnd = 1709251199999ULL;

#if defined(_WIN32)

TEST(LocalTime, KeepsSecondsAndMillisecondsOfTheClocksInstant) {
    // The zone of the Windows side cannot be chosen here; whole-minute zones keep these fields.
    testsupport::ScopedVirtualClock clock(kLeapDayEnd);
    os::LocalTime t = os::localTime();
    EXPECT_EQ(t.second, 59);
    EXPECT_EQ(t.milliseconds, 999);
    clock.advance(1);
    t = os::localTime();
    EXPECT_EQ(t.second, 0);
    EXPECT_EQ(t.milliseconds, 0);
}

#else

struct Expected {
    uint16_t year, month, dayOfWeek, day, hour, minute, second, milliseconds;
};

void expectLocal(const os::LocalTime& t, const Expected& e, const std::string& label) {
    EXPECT_EQ(t.year, e.year) << label;
    EXPECT_EQ(t.month, e.month) << label;
    EXPECT_EQ(t.dayOfWeek, e.dayOfWeek) << label;
    EXPECT_EQ(t.day, e.day) << label;
    EXPECT_EQ(t.hour, e.hour) << label;
    EXPECT_EQ(t.minute, e.minute) << label;
    EXPECT_EQ(t.second, e.second) << label;
    EXPECT_EQ(t.milliseconds, e.milliseconds) << label;
}

TEST(LocalTime, FollowsTheClockInTheProcesssZone) {
    struct Case {
        const char* zone;
        uint64_t advance;
        Expected local;
    };
    const Case cases[] = {
        {"UTC0", 0, {2024, 2, 4, 29, 23, 59, 59, 999}},
        {"UTC0", 1, {2024, 3, 5, 1, 0, 0, 0, 0}},
        {"EST5", 0, {2024, 2, 4, 29, 18, 59, 59, 999}},
        {"EST5", 5 * 3600 * 1000 + 1, {2024, 3, 5, 1, 0, 0, 0, 0}},
        {"IST-5:30", 0, {2024, 3, 5, 1, 5, 29, 59, 999}},
    };
    const char* saved = std::getenv("TZ");
    const std::string previous = saved != nullptr ? saved : "";
    for (const Case& c : cases) {
        setenv("TZ", c.zone, 1);
        tzset();
        testsupport::ScopedVirtualClock clock(kLeapDayEnd);
        clock.advance(c.advance);
        expectLocal(os::localTime(), c.local,
                    std::string(c.zone) + " +" + std::to_string(c.advance));
    }
    if (saved != nullptr) {
        setenv("TZ", previous.c_str(), 1);
    } else {
        unsetenv("TZ");
    }
    tzset();
}

#endif

}  // namespace

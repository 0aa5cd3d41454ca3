#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "os/Clock.h"
#include "os/VirtualClock.h"
#include "quel5/DiagModule.h"
#include "support/RecordingHost.h"

namespace {

using quel5::DiagModule;
using quel5::Value;
using testsupport::RecordingHost;
using testsupport::ScopedHost;

TEST(RecordingHostTest, ReportsCarryTheTimeOfTheOneClock) {
    os::VirtualClock clock(1'000'000);
    os::installClock(&clock);
    RecordingHost host;
    {
        ScopedHost installed(host);
        DiagModule::percentDone(1);
        os::sleepMilliseconds(1500);
        DiagModule::estimatedTimeLeft(9);
    }
    os::installClock(nullptr);
    const auto percents = host.all<testsupport::PercentReport>();
    const auto timesLeft = host.all<testsupport::TimeLeftReport>();
    ASSERT_EQ(percents.size(), 1u);
    ASSERT_EQ(timesLeft.size(), 1u);
    EXPECT_EQ(percents[0].timeMs, 1'000'000u);
    EXPECT_EQ(timesLeft[0].timeMs, 1'001'500u);
}

TEST(RecordingHostTest, LocalizeListsTheVariablesInOrder) {
    struct Case {
        quel5::Variables variables;
        std::string text;
    };
    const Case cases[] = {
        {{}, "KEY"},
        {{{"A", Value(1u)}}, "KEY{A=1}"},
        {{{"B", Value("x y")}, {"A", Value::percent(2.5)}, {"C", Value::boolean(false)}},
         "KEY{B=x y,A=2.5,C=false}"},
    };
    RecordingHost host;
    for (const Case& c : cases) {
        EXPECT_EQ(host.localize("KEY", c.variables).toUtf8(), c.text);
    }
}

TEST(RecordingHostTest, QueriesSelectByKeyAndClearForgets) {
    RecordingHost host;
    ScopedHost installed(host);
    quel5::Event first("First");
    quel5::Event second("Second");
    DiagModule::warning(&first, "s", 1);
    DiagModule::error(&second, "s", 2);
    DiagModule::warning(&first, "s", 3);
    DiagModule::checkForStop();

    EXPECT_EQ(host.eventKeys(), (std::vector<std::string>{"First", "Second", "First"}));
    const auto firsts = host.eventsWithKey("First");
    ASSERT_EQ(firsts.size(), 2u);
    EXPECT_EQ(firsts[1].line, 3);
    EXPECT_EQ(host.count<testsupport::EventReport>(), 3u);
    EXPECT_EQ(host.lastPercent(), std::nullopt);
    EXPECT_EQ(host.stopPolls(), 1u);

    host.clear();
    EXPECT_TRUE(host.reports().empty());
    EXPECT_EQ(host.stopPolls(), 0u);
}

}  // namespace

// CLinearSeekTest on a simulated drive under the virtual clock: the sectors it reads, how every
// way out of a pass releases the tray, the error rules in place, progress and stop, the re-run.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "ReadOnlyTestSupport.h"
#include "libDrive/LinearSeekTest.h"

namespace {

using testsupport::ErrorCase;

using drivetests::CallRecordingDrive;
using drivetests::driveOf;
using drivetests::ExitCase;
using drivetests::ScriptedDrive;
using drivetests::stepsFrom;
using drivetests::StopCase;
using quel5::TestResult;

using drivetests::Parameters;

using LinearSeek = drivetests::ReadOnlyFixture<kivrlibdrive::CLinearSeekTest>;

// What one pass asks of a drive that reads `sectors` without trouble.
std::vector<std::string> passCalls(const std::vector<uint64_t>& sectors) {
    std::vector<std::string> calls = {"lock"};
    for (const uint64_t sector : sectors) {
        calls.push_back("prepare");
        calls.push_back("read " + std::to_string(sector));
    }
    calls.push_back("unlock");
    return calls;
}

struct WalkCase {
    const char* name;
    uint64_t total;
    Parameters parameters;
    std::vector<uint64_t> reads;
};

TEST_F(LinearSeek, ReadsOneSectorAtEveryJumpFromStartToEnd) {
    // clang-format off
    const WalkCase cases[] = {
        {"jump as long as the range", 1000, {{"StartRange", "100"}, {"EndRange", "110"}, {"NumberOfSeeks", "1"}}, {100}},
        {"uneven span", 1000, {{"StartRange", "7"}, {"EndRange", "20"}, {"NumberOfSeeks", "4"}}, {7, 10, 13, 16, 19}},
        {"up to the last sector", 1000, {{"StartRange", "MAX-10"}, {"NumberOfSeeks", "5"}}, {990, 992, 994, 996, 998}},
    };
    // clang-format on
    for (const WalkCase& c : cases) {
        SCOPED_TRACE(c.name);
        reset(c.parameters);
        CallRecordingDrive drive(device, driveOf(c.total, 4096));

        EXPECT_EQ(run(drive), TestResult::PASS);

        std::vector<std::string> expected = passCalls(c.reads);
        expected.push_back("pass?");
        EXPECT_EQ(drive.calls, expected);
        for (const sim::Operation& operation : drive.operations()) {
            EXPECT_EQ(operation.requestedCount, 1u);
            EXPECT_EQ(operation.sectors, 1u) << "the buffer holds one sector";
        }
        EXPECT_EQ(host.percents(), std::vector<unsigned>{100}) << "no report within a second";
        EXPECT_EQ(host.stopPolls(), 0u);
        EXPECT_TRUE(host.events().empty());
    }
}

TEST_F(LinearSeek, EveryWayOutOfAPassUnlocksTheTrayOnce) {
    const auto tooManyErrors = [](ScriptedDrive& d) {
        for (uint64_t s : {1u, 2u, 3u}) d.injectFault(s, sim::SectorFault::ReadFails);
    };
    const auto passingMediaCheck = [](ScriptedDrive& d) { d.switches().needsMediaCheck = true; };
    std::vector<uint64_t> twoPasses = stepsFrom(0, 1, 10);
    twoPasses.insert(twoPasses.end(), twoPasses.begin(), twoPasses.end());
    // clang-format off
    const ExitCase cases[] = {
        {.name = "no handle", .arrange = drivetests::noHandle, .result = TestResult::NODEVICE, .passes = 0, .events = {"INVALID_DRIVE_HANDLE"}},
        {.name = "media check fails", .arrange = drivetests::mediaCheckFails, .result = TestResult::NOMEDIA},
        {.name = "bad range", .parameters = {{"StartRange", "MAX"}, {"NumberOfSeeks", "10"}},
         .result = TestResult::BADPARAMS, .events = {"InvalidRangeEntry"}},
        {.name = "sector size 0", .configure = drivetests::noSectorSize, .result = TestResult::INTERNALERROR, .events = {"INVALID_BUFFER_SIZE"}},
        {.name = "read ends the test", .arrange = drivetests::readEndsTheTest(5), .result = TestResult::INTERNALERROR, .reads = stepsFrom(0, 1, 6)},
        {.name = "too many errors", .parameters = {{"EndRange", "10"}, {"NumberOfSeeks", "10"}, {"MaxErrors", "2"}},
         .arrange = tooManyErrors, .result = TestResult::FAIL, .events = {"MAX_ERRORS_EXCEEDED"}, .reads = stepsFrom(0, 1, 3)},
        {.name = "media check passes", .arrange = passingMediaCheck, .result = TestResult::PASS, .reads = stepsFrom(0, 1, 10)},
        {.name = "failed twice", .arrange = drivetests::failsAndIsRerun(9), .result = TestResult::FAIL, .passes = 2,
         .events = {"RERUN_TEST"}, .reads = twoPasses},
    };
    // clang-format on
    runExitCases(cases, {{"EndRange", "10"}, {"NumberOfSeeks", "10"}}, driveOf(100), "", nullptr,
                 [](const ExitCase& c, ScriptedDrive& drive) {
                     if (c.passes > 0 && drive.counters().checkMedia > 0) {
                         EXPECT_FALSE(drive.counters().lastCheckMediaFlag);
                         EXPECT_EQ(drive.calls[1], "media") << "the media check follows the lock";
                     }
                 });
}

TEST_F(LinearSeek, ADriveThatThrowsStillGetsItsTrayBack) {
    set("EndRange", "10");
    set("NumberOfSeeks", "10");
    CallRecordingDrive drive(device, driveOf(100));
    drive.throwOnReadOf = 4;
    EXPECT_THROW(run(drive), kiv::Exception);
    EXPECT_EQ(drive.counters().lockTray, 1u);
    EXPECT_EQ(drive.counters().unlockTray, 1u);
    EXPECT_EQ(drive.calls.back(), "unlock");
}

TEST_F(LinearSeek, ErrorRulesInPlace) {
    // 100 reads of one sector each, sectors 0 to 99.
    const std::vector<uint64_t> tenNotLast = {3, 9, 15, 21, 30, 44, 50, 61, 77, 88};
    const std::vector<uint64_t> tenWithLast = {3, 9, 15, 21, 30, 44, 50, 61, 77, 99};
    // clang-format off
    const ErrorCase cases[] = {
        {"no minimum: one error fails", {{"MaxErrors", "10"}}, {50}, TestResult::FAIL, 100, {}, ""},
        {"above the threshold, last read good", {{"MaxErrors", "100"}, {"MinErrorPercentage", "5"}}, tenNotLast, TestResult::PASS, 100, {}, ""},
        {"above the threshold, last read failed", {{"MaxErrors", "100"}, {"MinErrorPercentage", "5"}}, tenWithLast, TestResult::FAIL, 100, {}, ""},
        {"under the threshold", {{"MaxErrors", "100"}, {"MinErrorPercentage", "5"}}, {3, 40, 99}, TestResult::PASS, 100, {"TEST_PASSED_WITH_ERRORS"}, "3.00"},
        {"stop at MaxErrors without a minimum", {{"MaxErrors", "3"}}, {10, 20, 30, 40, 50}, TestResult::FAIL, 31, {"MAX_ERRORS_EXCEEDED"}, ""},
        {"stop once above the threshold", {{"MaxErrors", "3"}, {"MinErrorPercentage", "5"}}, stepsFrom(0, 1, 10), TestResult::FAIL, 6, {"TEST_FAILED_THRESHOLD"}, ""},
        {"MaxErrors 0 never stops", {{"MaxErrors", "0"}}, stepsFrom(0, 1, 20), TestResult::FAIL, 100, {}, ""},
    };
    // clang-format on
    runErrorCases(cases, {{"EndRange", "100"}, {"NumberOfSeeks", "100"}}, driveOf(1000), true);
}

TEST_F(LinearSeek, PassedWithErrorsCountsAgainstThePlannedReads) {
    // 10 sectors, jump 3: four reads but three planned, so one error is 33.33 percent.
    set("EndRange", "10");
    set("NumberOfSeeks", "3");
    set("MaxErrors", "10");
    set("MinErrorPercentage", "40");
    CallRecordingDrive drive(device, driveOf(100));
    drive.injectFault(3, sim::SectorFault::ReadFails);

    EXPECT_EQ(run(drive), TestResult::PASS);

    EXPECT_EQ(host.eventSummaries(),
              std::vector<std::string>{"WARNING TEST_PASSED_WITH_ERRORS@libDrive/DriveTest"
                                       "{percent=33.33,threshold_percent=40.00}"});
}

TEST_F(LinearSeek, ReportsAboutOnceASecondWithALowEarlyEstimate) {
    for (const bool estimates : {false, true}) {
        SCOPED_TRACE(estimates ? "drive wants estimates" : "no estimates");
        reset({{"EndRange", "3000"}, {"NumberOfSeeks", "3000"}});
        // Each read takes 10 ms, so a report falls due every 101 reads.
        CallRecordingDrive drive(device, driveOf(3000, 512, 10));
        drive.switches().provideEstimatedTime = estimates;

        EXPECT_EQ(run(drive), TestResult::PASS);

        const auto progress = host.progressReports();
        ASSERT_EQ(progress.size(), 29u);
        for (std::size_t i = 0; i < progress.size(); ++i) {
            EXPECT_EQ(progress[i].key, "READ_SECTOR");
            EXPECT_EQ(progress[i].get(L"ReadSector"), quel5::Value(101u * (i + 1)));
            EXPECT_EQ(progress[i].get(L"EndSector"), quel5::Value(3000u));
            EXPECT_EQ(progress[i].intervalMs, 0.0);
        }
        const std::vector<unsigned> percents = host.percents();
        ASSERT_EQ(percents.size(), 30u);
        EXPECT_EQ(percents[0], 3u);
        EXPECT_EQ(percents[28], 97u);
        EXPECT_EQ(percents[29], 100u);
        EXPECT_EQ(host.stopPolls(), 29u);

        // The first estimate divides 101 samples by a full ring: 1010 ms * 2899 steps -> 2 s.
        EXPECT_TRUE(wasLogged("libDrive.LinearSeekTest", 1, "231  Estimated Time Left 2"));
        if (estimates) {
            const std::vector<unsigned> left = host.timesLeft();
            ASSERT_EQ(left.size(), 29u);
            EXPECT_EQ(left[0], 2u);
            EXPECT_EQ(left[9], 19u) << "ring full: 10000 ms * 1990 steps";
            EXPECT_EQ(left[28], 0u);
        } else {
            EXPECT_TRUE(host.timesLeft().empty());
        }
    }
}

TEST_F(LinearSeek, StopRequestsAreSeenAtReports) {
    // clang-format off
    const StopCase cases[] = {
        {"first report", 0, {}, {}, TestResult::USERABORTED, 102},
        {"second report", 1, {}, {}, TestResult::USERABORTED, 203},
        {"with an error and no minimum", 0, {{"MaxErrors", "10"}}, {5}, TestResult::FAIL, 102},
        {"with an error under a minimum", 0, {{"MaxErrors", "10"}, {"MinErrorPercentage", "5"}}, {5}, TestResult::USERABORTED, 102},
    };
    // clang-format on
    runStopCases(cases, {{"EndRange", "3000"}, {"NumberOfSeeks", "3000"}}, driveOf(3000, 512, 10),
                 [this](const StopCase&, ScriptedDrive&) { EXPECT_TRUE(host.events().empty()); });
}

struct RerunCase {
    const char* name;
    bool failing;
    bool allowed;
    bool confirmed;
    bool heals;
    TestResult passResult;
    TestResult result;
    unsigned passes;
};

TEST_F(LinearSeek, OneRerunAfterAFailureAndThePassResultOfTheDrive) {
    // clang-format off
    const RerunCase cases[] = {
        {"healed by the re-run", true, true, true, true, TestResult::PASS, TestResult::PASS, 2},
        {"failing again", true, true, true, false, TestResult::PASS, TestResult::FAIL, 2},
        {"declined", true, true, false, false, TestResult::PASS, TestResult::FAIL, 1},
        {"not allowed", true, false, true, true, TestResult::PASS, TestResult::FAIL, 1},
        {"pass replaced", false, false, false, false, TestResult::WARN, TestResult::WARN, 1},
        {"healed pass replaced", true, true, true, true, TestResult::NOMEDIA, TestResult::NOMEDIA, 2},
        {"failure kept", true, false, false, false, TestResult::WARN, TestResult::FAIL, 1},
    };
    // clang-format on
    for (const RerunCase& c : cases) {
        SCOPED_TRACE(c.name);
        reset({{"EndRange", "10"}, {"NumberOfSeeks", "10"}});
        CallRecordingDrive drive(device, driveOf(100));
        if (c.failing) drive.injectFault(4, sim::SectorFault::ReadFails);
        drive.switches().rerunAllowed = c.allowed;
        drive.switches().confirmRerun = c.confirmed;
        drive.switches().passResult = c.passResult;
        drive.healOnConfirmedRerun = c.heals;

        EXPECT_EQ(run(drive), c.result);

        const std::vector<std::string> onePass = passCalls(stepsFrom(0, 1, 10));
        std::vector<std::string> expected = onePass;
        if (c.failing) {
            expected.push_back("rerun?");
            if (c.allowed) expected.push_back("confirm?");
            if (c.allowed && c.confirmed)
                expected.insert(expected.end(), onePass.begin(), onePass.end());
        }
        if (c.result != TestResult::FAIL) expected.push_back("pass?");
        EXPECT_EQ(drive.calls, expected);
        EXPECT_EQ(drive.counters().lockTray, c.passes);

        // The line of the re-run event is this library's own choice.
        const auto reruns = host.eventsWithKey("RERUN_TEST");
        const int rerunLine = reruns.empty() ? 0 : reruns[0].line;
        const std::vector<std::string> onePassReports = {"percent 100"};
        const std::vector<std::string> twoPassReports = {
            "percent 100", "reset percent",
            "INFORMATIVE RERUN_TEST@libDrive/LinearSeekTest:" + std::to_string(rerunLine),
            "percent 100"};
        EXPECT_EQ(host.timeline(), c.passes == 2 ? twoPassReports : onePassReports);
    }
}

TEST_F(LinearSeek, TracesItsMembersWhileDetailIsLogged) {
    set("EndRange", "10");
    set("NumberOfSeeks", "10");
    CallRecordingDrive drive(device, driveOf(100));
    ASSERT_EQ(run(drive), TestResult::PASS);
    const struct {
        const char* logger;
        const char* function;
    } traced[] = {{"libDrive.LinearSeekTest", "CLinearSeekTest::Run"},
                  {"libDrive.LinearSeekTest", "CLinearSeekTest::DoTesting"},
                  {"libDrive.DriveTest", "DriveTest::DriveTest"},
                  {"libDrive.DriveTest", "Initialize"},
                  {"libDrive.Range", "CRange::GetRange"}};
    for (const auto& t : traced) {
        const std::vector<std::string> lines = logged(t.logger, 1);
        EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.find(std::string("Entering ") + t.function) != std::string::npos;
        })) << t.function;
    }
}

}  // namespace

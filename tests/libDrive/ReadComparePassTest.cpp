// CLinearReadCompareTest on a simulated drive under the virtual clock: two reads of every
// visited sector, compare errors, the counting of failed and internal-error reads with their two
// early exits, progress on every step, the estimate once a second, stop, and the working result
// that carries over from one pass to the next.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "ReadOnlyTestSupport.h"
#include "libDrive/LinearReadCompareTest.h"

namespace {

using drivetests::CallRecordingDrive;
using drivetests::DirectRange;
using drivetests::driveOf;
using drivetests::ExitCase;
using drivetests::ScriptedDrive;
using drivetests::stepsFrom;
using quel5::TestResult;

using drivetests::Parameters;

// What a pass that counted no error returns: the working result an earlier pass left. Every
// test below first leaves this one, by a pass stopped at its first poll.
constexpr TestResult kCarried = TestResult::USERABORTED;

class ReadCompare : public drivetests::ReadOnlyFixture<kivrlibdrive::CLinearReadCompareTest> {
protected:
    // Runs a stopped pass so that the next one starts from kCarried, and forgets what it
    // reported.
    void leaveCarriedResult() {
        reset({{"EndRange", "2"}, {"NumberOfSeeks", "2"}});
        host.stopAfterPolls(0);
        CallRecordingDrive drive(device, driveOf(10));
        ASSERT_EQ(run(drive), kCarried);
        host.neverStop();
        host.clear();
    }
    // Calls of one step that reads `sector` twice.
    static std::vector<std::string> twice(uint64_t sector) {
        const std::string read = "read " + std::to_string(sector);
        return {"prepare", read, "prepare", read};
    }
};

struct WalkCase {
    const char* name;
    Parameters parameters;
    std::vector<uint64_t> sectors;
    uint64_t start;
    uint64_t span;
};

TEST_F(ReadCompare, ReadsEveryVisitedSectorTwiceAndReportsEveryStep) {
    // clang-format off
    const WalkCase cases[] = {
        {"jump 3 over 10 sectors", {{"EndRange", "10"}, {"NumberOfSeeks", "3"}}, {0, 3, 6, 9}, 0, 10},
        {"up to the end of the drive", {{"StartRange", "MAX-3"}, {"NumberOfSeeks", "3"}}, {1997, 1998, 1999}, 1997, 3},
    };
    // clang-format on
    for (const WalkCase& c : cases) {
        SCOPED_TRACE(c.name);
        leaveCarriedResult();
        reset(c.parameters);
        CallRecordingDrive drive(device, driveOf(2000, 4096));

        EXPECT_EQ(run(drive), kCarried);

        std::vector<std::string> expected = {"lock"};
        std::vector<unsigned> percents;
        for (const uint64_t sector : c.sectors) {
            for (const std::string& call : twice(sector)) expected.push_back(call);
            percents.push_back(static_cast<unsigned>((sector - c.start) * 100 / c.span));
        }
        expected.push_back("unlock");
        EXPECT_EQ(drive.calls, expected);
        percents.push_back(100);
        EXPECT_EQ(host.percents(), percents);
        const auto progress = host.progressReports();
        ASSERT_EQ(progress.size(), c.sectors.size());
        for (std::size_t i = 0; i < progress.size(); ++i) {
            EXPECT_EQ(progress[i].key, "READ_SECTOR");
            EXPECT_EQ(progress[i].intervalMs, 1000.0);
            EXPECT_EQ(progress[i].get(L"ReadSector"), quel5::Value(c.sectors[i]));
            EXPECT_EQ(progress[i].get(L"EndSector"), quel5::Value(c.start + c.span));
        }
        EXPECT_EQ(host.stopPolls(), c.sectors.size());
        for (const sim::Operation& operation : drive.operations()) EXPECT_EQ(operation.sectors, 1u);
    }
}

struct FaultCase {
    const char* name;
    Parameters limits;
    std::function<void(ScriptedDrive&)> arrange;
    TestResult result;
    std::string readsOf;  // how often each sector from 0 on is read: "2212" reads sector 2 once
    std::vector<std::string> events;  // "KEY@line" or "KEY@line{TestSector}"
    unsigned stopPolls;
    bool finalPercent;
};

TEST_F(ReadCompare, CountsFailuresAndCompareErrorsAndToleratesTenInternalErrors) {
    const auto fault = [](std::vector<uint64_t> sectors, sim::SectorFault kind) {
        return [sectors, kind](ScriptedDrive& d) {
            for (const uint64_t sector : sectors) d.injectFault(sector, kind);
        };
    };
    const auto script = [](std::vector<std::pair<uint64_t, unsigned>> reads, TestResult answer) {
        return [reads, answer](ScriptedDrive& d) {
            for (const auto& read : reads) d.scripted[read] = answer;
        };
    };
    const auto internalOnBothReads = [](ScriptedDrive& d) {
        for (uint64_t s = 0; s < 5; ++s) d.scripted[{s, 2}] = TestResult::INTERNALERROR;
        for (uint64_t s = 10; s < 20; ++s) d.injectFault(s, sim::SectorFault::ReadInternalError);
    };
    const auto twiceEach = [](std::size_t sectors) { return std::string(sectors, '2'); };
    const auto onceEach = [](std::size_t sectors) { return std::string(sectors, '1'); };
    // 20 sectors, jump 1, unless the limits say more.
    // clang-format off
    const FaultCase cases[] = {
        {"flaky sector", {}, fault({4}, sim::SectorFault::Flaky), TestResult::FAIL, twiceEach(20), {"DATA_COMPARE_FAILED@323{4}"}, 20, true},
        {"first read fails", {}, fault({4}, sim::SectorFault::ReadFails), TestResult::FAIL, "22221" + twiceEach(15), {}, 19, true},
        {"second read fails", {}, script({{4, 2}}, TestResult::FAIL), TestResult::FAIL, twiceEach(20), {}, 20, true},
        {"other results are ignored", {}, script({{4, 1}, {6, 2}}, TestResult::NOMEDIA), kCarried, "22221" + twiceEach(15), {}, 19, true},
        {"ten internal errors tolerated", {}, fault(stepsFrom(0, 1, 10), sim::SectorFault::ReadInternalError), kCarried,
         onceEach(10) + twiceEach(10), {}, 10, true},
        {"the eleventh internal error fails", {}, fault(stepsFrom(0, 1, 11), sim::SectorFault::ReadInternalError), TestResult::FAIL,
         onceEach(11), {}, 0, false},
        {"internal errors of second reads count", {}, internalOnBothReads, TestResult::FAIL, twiceEach(10) + onceEach(6), {}, 10, false},
        {"MaxErrors on failed reads", {{"MaxErrors", "2"}}, fault({2, 5}, sim::SectorFault::ReadFails), TestResult::FAIL,
         "221221", {"MAX_ERRORS_EXCEEDED@DriveTest"}, 4, false},
        {"MaxErrors on compare errors", {{"MaxErrors", "2"}}, fault({2, 5}, sim::SectorFault::Flaky), TestResult::FAIL,
         twiceEach(6), {"DATA_COMPARE_FAILED@323{2}", "DATA_COMPARE_FAILED@323{5}", "MAX_ERRORS_EXCEEDED@DriveTest"}, 5, true},
        {"MaxErrors 0 never stops", {{"MaxErrors", "0"}}, fault({2, 5, 7}, sim::SectorFault::ReadFails), TestResult::FAIL,
         "22122121" + twiceEach(12), {}, 17, true},
        {"compare error under the threshold", {{"MaxErrors", "10"}, {"MinErrorPercentage", "10"}}, fault({3}, sim::SectorFault::Flaky), TestResult::PASS,
         twiceEach(20), {"DATA_COMPARE_FAILED@323{3}", "TEST_PASSED_WITH_ERRORS@DriveTest"}, 20, true},
    };
    // clang-format on
    for (const FaultCase& c : cases) {
        SCOPED_TRACE(c.name);
        leaveCarriedResult();
        reset({{"EndRange", "20"}, {"NumberOfSeeks", "20"}});
        for (const auto& [key, text] : c.limits) set(key, text);
        ScriptedDrive drive(device, driveOf(100));
        c.arrange(drive);

        EXPECT_EQ(run(drive), c.result);

        std::vector<std::string> expected = {"lock"};
        for (std::size_t sector = 0; sector < c.readsOf.size(); ++sector) {
            for (int n = 0; n < c.readsOf[sector] - '0'; ++n) {
                expected.push_back("prepare");
                expected.push_back("read " + std::to_string(sector));
            }
        }
        expected.push_back("unlock");
        if (c.result == TestResult::FAIL) expected.push_back("rerun?");
        if (c.result == TestResult::PASS) expected.push_back("pass?");
        EXPECT_EQ(drive.calls, expected);
        std::vector<std::string> events;
        for (const auto& event : host.events()) {
            std::string text = event.key + "@";
            if (event.source == "libDrive/DriveTest") {
                text += "DriveTest";
            } else {
                EXPECT_EQ(event.source, "libDrive/LinearReadCompareTest");
                EXPECT_EQ(event.severity, quel5::Severity::ERROR);
                text += std::to_string(event.line) + "{" +
                        event.get(L"TestSector").toString().toUtf8() + "}";
            }
            events.push_back(text);
        }
        EXPECT_EQ(events, c.events);
        EXPECT_EQ(host.stopPolls(), c.stopPolls);
        EXPECT_EQ(host.lastPercent() == std::optional<unsigned>(100), c.finalPercent);
    }
}

TEST_F(ReadCompare, StopIsPolledOnEveryStepWhoseFirstReadPassed) {
    const struct {
        const char* name;
        std::vector<uint64_t> failing;
        TestResult result;
        std::vector<uint64_t> readTwice;
    } cases[] = {
        {"no failures", {}, TestResult::USERABORTED, {0, 1, 2, 3}},
        {"a failed first read is not a poll", {1}, TestResult::FAIL, {0, 2, 3, 4}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        reset({{"EndRange", "10"}, {"NumberOfSeeks", "10"}, {"MaxErrors", "10"}});
        host.stopAfterPolls(3);
        CallRecordingDrive drive(device, driveOf(100));
        for (const uint64_t sector : c.failing)
            drive.injectFault(sector, sim::SectorFault::ReadFails);

        EXPECT_EQ(run(drive), c.result);

        std::vector<uint64_t> expected;
        for (uint64_t sector = 0; sector <= c.readTwice.back(); ++sector) {
            expected.push_back(sector);
            if (std::count(c.readTwice.begin(), c.readTwice.end(), sector) == 1)
                expected.push_back(sector);
        }
        EXPECT_EQ(drive.readSectors(), expected);
        EXPECT_EQ(host.stopPolls(), 4u);
        EXPECT_EQ(host.lastPercent(), std::optional<unsigned>(100));
        EXPECT_EQ(drive.counters().unlockTray, 1u);
    }
}

TEST_F(ReadCompare, EstimatesTheTimeLeftAboutOnceASecond) {
    leaveCarriedResult();
    reset({{"EndRange", "3000"}, {"NumberOfSeeks", "3000"}});
    // 10 ms a read, 20 ms a step: an estimate falls due every 51 steps.
    CallRecordingDrive drive(device, driveOf(3000, 512, 10));
    drive.switches().provideEstimatedTime = true;

    EXPECT_EQ(run(drive), kCarried);

    EXPECT_EQ(host.progressReports().size(), 3000u);
    const std::vector<unsigned> left = host.timesLeft();
    ASSERT_EQ(left.size(), 58u);
    EXPECT_EQ(left[19], 39u) << "ring full of 20 ms steps, 1980 steps to go";
    EXPECT_TRUE(wasLogged("libDrive.LinearReadCompareTest", 1, "213  Estimated Time Left 39"));
}

TEST_F(ReadCompare, AStepWithAFailedFirstReadIsTimedWithTheNextOne) {
    // Odd sectors fail their first read (10 ms) and leave no sample of their own: the next even
    // sector's sample holds both steps, 30 ms. Once 1000 such samples are in (sector 2000 on),
    // an estimate made at sector s is 30000 ms * (3000 - s) / 10^6 seconds.
    leaveCarriedResult();
    reset({{"EndRange", "3000"}, {"NumberOfSeeks", "3000"}, {"MaxErrors", "0"}});
    CallRecordingDrive drive(device, driveOf(3000, 512, 10));
    for (uint64_t sector = 1; sector < 3000; sector += 2)
        drive.injectFault(sector, sim::SectorFault::ReadFails);
    drive.switches().provideEstimatedTime = true;

    EXPECT_EQ(run(drive), TestResult::FAIL);

    // Each estimate is followed by the progress of the step it was made at.
    std::vector<std::pair<uint64_t, unsigned>> late;
    std::optional<unsigned> pending;
    for (const testsupport::Report& report : host.reports()) {
        if (const auto* left = std::get_if<testsupport::TimeLeftReport>(&report)) {
            pending = left->seconds;
        } else if (const auto* progress = std::get_if<testsupport::ProgressReport>(&report)) {
            const uint64_t sector = progress->get(L"ReadSector").valueUint64();
            if (pending && sector > 2000) late.emplace_back(sector, *pending);
            pending.reset();
        }
    }
    ASSERT_GE(late.size(), 10u);
    for (const auto& [sector, seconds] : late) {
        EXPECT_EQ(seconds, 30000 * (3000 - sector) / 1000000) << "at sector " << sector;
    }
}

TEST_F(ReadCompare, TheWorkingResultCarriesOverIntoLaterPasses) {
    struct Pass {
        const char* name;
        bool stop;
        std::optional<uint64_t> flaky;
        bool rerun;
        TestResult result;
    };
    // clang-format off
    const Pass passes[] = {
        {"stopped", true, {}, false, TestResult::USERABORTED},
        {"clean after a stop", false, {}, false, TestResult::USERABORTED},
        {"compare error", false, 3, false, TestResult::FAIL},
        {"clean after a compare error", false, {}, false, TestResult::FAIL},
        {"compare error, clean re-run", false, 3, true, TestResult::FAIL},
        {"stopped again", true, {}, false, TestResult::USERABORTED},
    };
    // clang-format on
    for (const Pass& pass : passes) {
        SCOPED_TRACE(pass.name);
        reset({{"EndRange", "10"}, {"NumberOfSeeks", "10"}});
        if (pass.stop) host.stopAfterPolls(0);
        CallRecordingDrive drive(device, driveOf(100));
        if (pass.flaky) drive.injectFault(*pass.flaky, sim::SectorFault::Flaky);
        drive.switches().rerunAllowed = pass.rerun;
        drive.switches().confirmRerun = pass.rerun;
        drive.healOnConfirmedRerun = pass.rerun;

        EXPECT_EQ(run(drive), pass.result);
        EXPECT_EQ(drive.counters().lockTray, pass.rerun ? 2u : 1u);
    }
}

TEST_F(ReadCompare, EveryWayOutOfAPassUnlocksTheTrayOnce) {
    // clang-format off
    const ExitCase cases[] = {
        drivetests::noHandleExit(),
        {.name = "media check fails", .arrange = drivetests::mediaCheckFails, .result = TestResult::NOMEDIA},
        {.name = "empty range", .range = DirectRange{30, 30}, .result = TestResult::BADPARAMS, .events = {"TOTAL_SECTOR_GREATER_THAN_ZERO:132"}},
        {.name = "sector size 0", .configure = drivetests::noSectorSize, .result = TestResult::INTERNALERROR, .events = {"INVALID_BUFFER_SIZE:149"}},
    };
    // clang-format on
    runExitCases(cases, {{"EndRange", "10"}, {"NumberOfSeeks", "10"}}, driveOf(100),
                 "libDrive/LinearReadCompareTest");
}

}  // namespace

// CFunnelSeekTest on a simulated drive under the virtual clock: the order of its pairs of reads,
// how every way out of a pass releases the tray, errors counted per read against pairs, the
// timed funnel progress with its time-left figure, the half-way call and stop.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ReadOnlyTestSupport.h"
#include "libDrive/FunnelSeekTest.h"
#include "support/ErrorCases.h"

namespace {

using testsupport::ErrorCase;
using testsupport::ErrorOutcome;
using testsupport::runErrorCases;

using drivetests::CallRecordingDrive;
using drivetests::DirectRange;
using drivetests::driveOf;
using drivetests::ScriptedDrive;
using quel5::TestResult;

using drivetests::Parameters;

class FunnelSeek : public drivetests::ReadOnlyFixture<kivrlibdrive::CFunnelSeekTest> {
protected:
    quel5::DiagDevice device{L"sim:funnel"};
};

// Low and high sectors of every pair, in order, for start S, end E, jump J.
std::vector<uint64_t> funnel(uint64_t start, uint64_t end, uint64_t jump) {
    std::vector<uint64_t> sectors;
    for (uint64_t k = 0; start + k * jump < end; ++k) {
        sectors.push_back(start + k * jump);
        sectors.push_back(end - 1 - k * jump);
    }
    return sectors;
}

struct OrderCase {
    const char* name;
    Parameters parameters;
    std::vector<uint64_t> reads;
};

TEST_F(FunnelSeek, ReadsPairsFromBothEndsMovingInwardAndOutAgain) {
    // clang-format off
    const OrderCase cases[] = {
        {"ten sectors, jump 1", {{"EndRange", "10"}, {"NumberOfSeeks", "10"}},
         {0, 9, 1, 8, 2, 7, 3, 6, 4, 5, 5, 4, 6, 3, 7, 2, 8, 1, 9, 0}},
        {"ten sectors, jump 3", {{"EndRange", "10"}, {"NumberOfSeeks", "3"}}, {0, 9, 3, 6, 6, 3, 9, 0}},
        {"one sector", {{"StartRange", "5"}, {"EndRange", "6"}, {"NumberOfSeeks", "1"}}, {5, 5}},
        {"jump as long as the range", {{"StartRange", "100"}, {"EndRange", "150"}, {"NumberOfSeeks", "1"}}, {100, 149}},
        {"ten percent", {{"StartRange", "1000"}, {"EndRange", "1100"}, {"SectorPercentToTest", "10"}}, funnel(1000, 1100, 10)},
        {"up to the end of the drive", {{"StartRange", "MAX-7"}, {"NumberOfSeeks", "7"}}, funnel(9993, 10000, 1)},
    };
    // clang-format on
    for (const OrderCase& c : cases) {
        SCOPED_TRACE(c.name);
        reset(c.parameters);
        CallRecordingDrive drive(device, driveOf(10000));

        EXPECT_EQ(run(drive), TestResult::PASS);

        std::vector<std::string> expected = {"lock"};
        for (std::size_t i = 0; i < c.reads.size(); i += 2) {
            expected.push_back("prepare");
            expected.push_back("read " + std::to_string(c.reads[i]));
            expected.push_back("read " + std::to_string(c.reads[i + 1]));
        }
        expected.push_back("unlock");
        expected.push_back("pass?");
        EXPECT_EQ(drive.calls, expected);
        for (const sim::Operation& operation : drive.operations()) EXPECT_EQ(operation.sectors, 1u);
        EXPECT_EQ(host.percents(), std::vector<unsigned>{100});
        EXPECT_EQ(host.stopPolls(), 0u);
    }
}

struct ExitCase {
    const char* name;
    uint32_t bytesPerSector;
    std::optional<DirectRange> range;
    std::function<void(ScriptedDrive&)> arrange;
    TestResult result;
    unsigned passes;
    std::vector<std::string> events;  // "KEY@line", from libDrive/FunnelSeekTest
    std::vector<uint64_t> reads;
};

TEST_F(FunnelSeek, EveryWayOutOfAPassUnlocksTheTrayOnce) {
    const auto nothing = [](ScriptedDrive&) {};
    // clang-format off
    const ExitCase cases[] = {
        {"no handle", 512, {}, [](ScriptedDrive& d) { d.switches().invalidHandle = true; },
         TestResult::NODEVICE, 0, {}, {}},
        {"media check fails", 512, {},
         [](ScriptedDrive& d) {
             d.switches().needsMediaCheck = true;
             d.switches().checkMediaResult = TestResult::NOMEDIA;
         },
         TestResult::NOMEDIA, 1, {}, {}},
        {"empty range", 512, DirectRange{30, 30, 1}, nothing,
         TestResult::BADPARAMS, 1, {"TOTAL_SECTOR_GREATER_THAN_ZERO@126"}, {}},
        {"sector size 0", 0, {}, nothing, TestResult::INTERNALERROR, 1, {"INVALID_BUFFER_SIZE@144"}, {}},
        {"high read ends the test", 512, {},
         [](ScriptedDrive& d) { d.injectFault(8, sim::SectorFault::ReadInternalError); },
         TestResult::INTERNALERROR, 1, {}, {0, 9, 1, 8}},
        {"low read ends the test", 512, {},
         [](ScriptedDrive& d) { d.injectFault(2, sim::SectorFault::ReadInternalError); },
         TestResult::INTERNALERROR, 1, {}, {0, 9, 1, 8, 2}},
        {"failed twice", 512, {},
         [](ScriptedDrive& d) {
             d.injectFault(3, sim::SectorFault::ReadFails);
             d.switches().rerunAllowed = true;
             d.switches().confirmRerun = true;
         },
         TestResult::FAIL, 2, {"RERUN_TEST@76"}, {}},
    };
    // clang-format on
    for (const ExitCase& c : cases) {
        SCOPED_TRACE(c.name);
        reset({{"EndRange", "10"}, {"NumberOfSeeks", "10"}});
        ScriptedDrive drive(device, driveOf(100, c.bytesPerSector));
        c.arrange(drive);

        EXPECT_EQ(run(drive, c.range), c.result);

        EXPECT_EQ(drive.counters().lockTray, c.passes);
        EXPECT_EQ(drive.counters().unlockTray, c.passes);
        EXPECT_EQ(eventsFrom("libDrive/FunnelSeekTest"), c.events);
        if (!c.reads.empty()) {
            EXPECT_EQ(drive.readSectors(), c.reads);
        }
        if (c.result == TestResult::INTERNALERROR) {
            EXPECT_NE(host.lastPercent(), std::optional<unsigned>(100));
        }
    }
}

TEST_F(FunnelSeek, BothReadsOfAPairCountAgainstThePairs) {
    // Ten sectors, jump 1: ten pairs, twenty reads; sector 9 is read second and second to last.
    // clang-format off
    const ErrorCase cases[] = {
        {"one bad sector read twice", {{"MaxErrors", "10"}}, {9}, TestResult::FAIL, 20, {}, ""},
        {"stop on the high read", {{"MaxErrors", "2"}}, {9, 8}, TestResult::FAIL, 4, {"MAX_ERRORS_EXCEEDED"}, ""},
        {"stop on the low read", {{"MaxErrors", "3"}}, {0, 9, 1}, TestResult::FAIL, 3, {"MAX_ERRORS_EXCEEDED"}, ""},
        {"under the threshold", {{"MaxErrors", "10"}, {"MinErrorPercentage", "25"}}, {4}, TestResult::PASS, 20, {"TEST_PASSED_WITH_ERRORS"}, "20.00"},
        {"more errors than pairs", {{"MaxErrors", "0"}, {"MinErrorPercentage", "50"}}, funnel(0, 10, 1), TestResult::PASS, 20, {"TEST_PASSED_WITH_ERRORS"}, "200.00"},
    };
    // clang-format on
    runErrorCases(cases, host, [&](const ErrorCase& c) {
        reset({{"EndRange", "10"}, {"NumberOfSeeks", "10"}});
        for (const auto& [key, text] : c.parameters) set(key, text);
        CallRecordingDrive drive(device, driveOf(100));
        for (const uint64_t sector : c.failing)
            drive.injectFault(sector, sim::SectorFault::ReadFails);
        return ErrorOutcome{run(drive), drive.operations().size()};
    });
}

TEST_F(FunnelSeek, ReportsBothSectorsAndTurnsOnceAtHalfWay) {
    reset({{"StartRange", "1000"}, {"EndRange", "4060"}, {"NumberOfSeeks", "3060"}});
    // 10 ms a read, 20 ms a pair: a report falls due after every 51 pairs. The 30th report
    // falls at exactly 50 percent.
    CallRecordingDrive drive(device, driveOf(5000, 512, 10));
    drive.switches().provideEstimatedTime = true;

    EXPECT_EQ(run(drive), TestResult::PASS);

    const auto progress = host.progressReports();
    ASSERT_EQ(progress.size(), 59u);
    for (std::size_t i = 0; i < progress.size(); ++i) {
        const uint64_t low = 1000 + 51 * (i + 1);
        EXPECT_EQ(progress[i].key, "READ_SECTOR_FUNNEL");
        EXPECT_EQ(progress[i].intervalMs, 1000.0);
        EXPECT_EQ(progress[i].get(L"ReadSector1"), quel5::Value(low));
        EXPECT_EQ(progress[i].get(L"ReadSector2"), quel5::Value(4059 - (low - 1000)));
        EXPECT_EQ(progress[i].get(L"EndSector"), quel5::Value(4060u));
    }
    const std::vector<unsigned> percents = host.percents();
    ASSERT_EQ(percents.size(), 60u);
    EXPECT_EQ(percents[0], 1u) << "51 of 3060 pairs";
    EXPECT_EQ(percents[29], 50u) << "1530 of 3060 pairs";
    EXPECT_EQ(percents[30], 51u) << "1581 of 3060 pairs";
    EXPECT_EQ(percents[59], 100u);
    // The remaining pairs are figured as (end - pairs done) / jump: (4060 - 51) pairs, not 3009.
    const std::vector<unsigned> left = host.timesLeft();
    ASSERT_EQ(left.size(), 59u);
    EXPECT_EQ(left[0], 4u) << "1020 ms over a ring of 1000 pairs, 4009 pairs counted";
    EXPECT_EQ(left[19], 60u) << "ring full of 20 ms pairs, 4060 - 1020 pairs counted";
    EXPECT_TRUE(wasLogged("libDrive.FunnelSeekTest", 1, "250  Estimated Time Left 60"));

    // One more PrepareRead, right after the pair at the first report past (not at) 50 percent.
    EXPECT_EQ(drive.counters().prepareRead, 3061u);
    const std::vector<std::string> turn = {"read 2581", "read 2478", "prepare", "prepare",
                                           "read 2582"};
    EXPECT_NE(std::search(drive.calls.begin(), drive.calls.end(), turn.begin(), turn.end()),
              drive.calls.end());
    EXPECT_EQ(host.stopPolls(), 59u);
}

TEST_F(FunnelSeek, StopRequestsAreSeenAtReports) {
    const struct {
        const char* name;
        unsigned pollsBeforeStop;
        std::vector<uint64_t> failing;
        Parameters limits;
        TestResult result;
        std::size_t pairs;
        unsigned prepares;
    } cases[] = {
        {"first report", 0, {}, {}, TestResult::USERABORTED, 52, 52},
        {"past half-way", 30, {}, {}, TestResult::USERABORTED, 31 * 51 + 1, 31 * 51 + 2},
        // clang-format off
        {"with an error and no minimum", 0, {2999}, {{"MaxErrors", "10"}}, TestResult::FAIL, 52, 52},
        {"with an error under a minimum", 0, {2999}, {{"MaxErrors", "10"}, {"MinErrorPercentage", "5"}}, TestResult::USERABORTED, 52, 52},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        reset({{"EndRange", "3000"}, {"NumberOfSeeks", "3000"}});
        for (const auto& [key, text] : c.limits) set(key, text);
        host.stopAfterPolls(c.pollsBeforeStop);
        CallRecordingDrive drive(device, driveOf(3000, 512, 10));
        for (const uint64_t sector : c.failing)
            drive.injectFault(sector, sim::SectorFault::ReadFails);

        EXPECT_EQ(run(drive), c.result);

        EXPECT_EQ(drive.operations().size(), 2 * c.pairs);
        EXPECT_EQ(drive.counters().prepareRead, c.prepares);
        EXPECT_EQ(host.stopPolls(), c.pollsBeforeStop + 1);
        EXPECT_EQ(host.lastPercent(), std::optional<unsigned>(100));
        EXPECT_EQ(drive.counters().unlockTray, 1u);
    }
}

}  // namespace

// CFunnelSeekTest on a simulated drive under the virtual clock: the order of its pairs of reads,
// how every way out of a pass releases the tray, errors counted per read against pairs, the
// timed funnel progress with its time-left figure, the half-way call and stop.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "ReadOnlyTestSupport.h"
#include "libDrive/FunnelSeekTest.h"

namespace {

using testsupport::ErrorCase;

using drivetests::CallRecordingDrive;
using drivetests::DirectRange;
using drivetests::driveOf;
using drivetests::ExitCase;
using drivetests::ScriptedDrive;
using drivetests::StopCase;
using quel5::TestResult;

using drivetests::Parameters;

using FunnelSeek = drivetests::ReadOnlyFixture<kivrlibdrive::CFunnelSeekTest>;

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
        {"ten sectors, jump 3", {{"EndRange", "10"}, {"NumberOfSeeks", "3"}}, {0, 9, 3, 6, 6, 3, 9, 0}},
        {"one sector", {{"StartRange", "5"}, {"EndRange", "6"}, {"NumberOfSeeks", "1"}}, {5, 5}},
        {"jump as long as the range", {{"StartRange", "100"}, {"EndRange", "150"}, {"NumberOfSeeks", "1"}}, {100, 149}},
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

TEST_F(FunnelSeek, EveryWayOutOfAPassUnlocksTheTrayOnce) {
    std::vector<uint64_t> twoPasses = funnel(0, 10, 1);
    twoPasses.insert(twoPasses.end(), twoPasses.begin(), twoPasses.end());
    // clang-format off
    const ExitCase cases[] = {
        drivetests::noHandleExit(),
        {.name = "media check fails", .arrange = drivetests::mediaCheckFails, .result = TestResult::NOMEDIA},
        {.name = "empty range", .range = DirectRange{30, 30, 1}, .result = TestResult::BADPARAMS, .events = {"TOTAL_SECTOR_GREATER_THAN_ZERO:126"}},
        {.name = "sector size 0", .configure = drivetests::noSectorSize, .result = TestResult::INTERNALERROR, .events = {"INVALID_BUFFER_SIZE:144"}},
        {.name = "high read ends the test", .arrange = drivetests::readEndsTheTest(8), .result = TestResult::INTERNALERROR, .reads = {0, 9, 1, 8}},
        {.name = "low read ends the test", .arrange = drivetests::readEndsTheTest(2), .result = TestResult::INTERNALERROR, .reads = {0, 9, 1, 8, 2}},
        {.name = "failed twice", .arrange = drivetests::failsAndIsRerun(3), .result = TestResult::FAIL, .passes = 2,
         .events = {"RERUN_TEST:76"}, .reads = twoPasses},
    };
    // clang-format on
    runExitCases(cases, {{"EndRange", "10"}, {"NumberOfSeeks", "10"}}, driveOf(100),
                 "libDrive/FunnelSeekTest");
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
    runErrorCases(cases, {{"EndRange", "10"}, {"NumberOfSeeks", "10"}}, driveOf(100));
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
    // The remaining pairs are figured as (end - pairs done) / jump, not as pairs left.
    const std::vector<unsigned> left = host.timesLeft();
    ASSERT_EQ(left.size(), 59u);
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
    // Reads come in pairs; one PrepareRead per pair, and one more once past half-way.
    // clang-format off
    const StopCase cases[] = {
        {"first report", 0, {}, {}, TestResult::USERABORTED, 2 * 52},
        {"past half-way", 30, {}, {}, TestResult::USERABORTED, 2 * (31 * 51 + 1)},
    };
    // clang-format on
    runStopCases(cases, {{"EndRange", "3000"}, {"NumberOfSeeks", "3000"}}, driveOf(3000, 512, 10),
                 [](const StopCase& c, ScriptedDrive& drive) {
                     const std::size_t pairs = c.reads / 2;
                     EXPECT_EQ(drive.counters().prepareRead,
                               c.pollsBeforeStop > 0 ? pairs + 1 : pairs);
                 });
}

}  // namespace

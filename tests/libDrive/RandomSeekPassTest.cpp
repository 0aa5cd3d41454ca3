// CRandomSeekTest on a simulated drive under the virtual clock, with the seeds of its engines
// scripted: which sectors it reads, that the end of the range is among them, how every way out
// of a pass releases the tray, the error rules counted against seeks, progress and stop.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ReadOnlyTestSupport.h"
#include "libDrive/RandomSeekTest.h"

namespace {

using testsupport::ErrorCase;

using drivetests::CallRecordingDrive;
using drivetests::DirectRange;
using drivetests::driveOf;
using drivetests::ExitCase;
using drivetests::ScriptedDrive;
using drivetests::SeedScript;
using drivetests::StopCase;
using quel5::TestResult;

using drivetests::Parameters;

const std::vector<uint32_t> kSeeds = {7, 19, 2024, 31337, 5, 88, 1234567, 42, 99991, 3};

using RandomSeek = drivetests::ReadOnlyFixture<kivrlibdrive::CRandomSeekTest>;

// The sectors `count` seeks read from [start, start + span] with the seeds of kSeeds.
std::vector<uint64_t> drawnSectors(uint64_t start, uint64_t span, std::size_t count) {
    std::vector<uint64_t> sectors;
    for (std::size_t i = 0; i < count; ++i)
        sectors.push_back(start + SeedScript::OffsetOf(kSeeds[i % kSeeds.size()], span));
    return sectors;
}

struct DrawCase {
    const char* name;
    uint64_t total;
    Parameters parameters;
    uint64_t start;
    uint64_t end;
    std::size_t seeks;
};

TEST_F(RandomSeek, EachSeekReadsOneSectorDrawnByAnEngineOfItsOwn) {
    // clang-format off
    const DrawCase cases[] = {
        {"small range", 1000, {{"StartRange", "100"}, {"EndRange", "110"}, {"NumberOfSeeks", "10"}}, 100, 110, 10},
        {"range up to the end of the drive", 64, {{"StartRange", "MAX-4"}, {"NumberOfSeeks", "3"}}, 60, 64, 3},
    };
    // clang-format on
    for (const DrawCase& c : cases) {
        SCOPED_TRACE(c.name);
        reset(c.parameters);
        SeedScript seeds(kSeeds);
        sim::SimulatedDriveConfig config = driveOf(c.total, 4096);
        config.optimalReadAmount = 64;
        CallRecordingDrive drive(device, config);

        const TestResult result = run(drive);

        const std::vector<uint64_t> expected = drawnSectors(c.start, c.end - c.start, c.seeks);
        EXPECT_EQ(drive.readSectors(), expected);
        const bool anyFailed =
            std::any_of(drive.operations().begin(), drive.operations().end(),
                        [](const sim::Operation& o) { return o.result != TestResult::PASS; });
        EXPECT_EQ(result, anyFailed ? TestResult::FAIL : TestResult::PASS);
        for (const sim::Operation& operation : drive.operations()) {
            EXPECT_EQ(operation.requestedCount, 1u);
            EXPECT_EQ(operation.sectors, 1u) << "one sector per read, whatever the drive prefers";
        }
        EXPECT_EQ(drive.counters().prepareRead, c.seeks);
        EXPECT_EQ(host.percents(), std::vector<unsigned>{100}) << "no report within a second";
    }
}

TEST_F(RandomSeek, TheEndOfTheRangeIsDrawnToo) {
    // [start, end] with both ends: the end is one past the last tested sector, and with an end
    // of "MAX" one past the drive, which the drive answers as a failed read.
    const struct {
        const char* name;
        uint64_t total;
        const char* endRange;
        TestResult endRead;
    } cases[] = {
        {"end inside the drive", 100, "14", TestResult::PASS},
        {"end of the drive", 14, "MAX", TestResult::FAIL},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        reset({{"StartRange", "10"}, {"EndRange", c.endRange}, {"NumberOfSeeks", "2"}});
        SeedScript seeds({SeedScript::SeedDrawing(4, 4), SeedScript::SeedDrawing(0, 4)});
        CallRecordingDrive drive(device, driveOf(c.total));

        EXPECT_EQ(run(drive), c.endRead);

        ASSERT_EQ(drive.readSectors(), (std::vector<uint64_t>{14, 10}));
        EXPECT_EQ(drive.operations().front().result, c.endRead);
    }
}

TEST_F(RandomSeek, UnscriptedDrawsCoverTheWholeClosedRange) {
    reset({{"StartRange", "50"}, {"EndRange", "54"}, {"NumberOfSeeks", "4"}});
    CallRecordingDrive drive(device, driveOf(1000));
    std::set<uint64_t> seen;
    for (int run = 0; run < 500 && seen.size() < 5; ++run) {
        drive.clearOperations();
        EXPECT_EQ(this->run(drive), TestResult::PASS);
        for (const uint64_t sector : drive.readSectors()) seen.insert(sector);
    }
    EXPECT_EQ(seen, (std::set<uint64_t>{50, 51, 52, 53, 54}));
}

TEST_F(RandomSeek, EveryWayOutOfAPassUnlocksTheTrayOnce) {
    const uint32_t at3 = SeedScript::SeedDrawing(3, 10);
    const uint32_t at5 = SeedScript::SeedDrawing(5, 10);
    // The seeds `seeds`, then what `more` arranges.
    const auto seeded = [](std::vector<uint32_t> seeds,
                           std::function<void(ScriptedDrive&)> more = {}) {
        return [seeds, more](ScriptedDrive& drive) {
            SeedScript::restart(seeds);
            if (more) more(drive);
        };
    };
    const auto startIsEnd = [](uint64_t seeks) { return DirectRange{10, 10, 1, seeks}; };
    const uint32_t zero = SeedScript::SeedDrawing(0, 1);
    const uint32_t one = SeedScript::SeedDrawing(1, 1);
    const std::vector<uint64_t> twoPassesAt15(10, 15);
    // clang-format off
    const ExitCase cases[] = {
        drivetests::noHandleExit(),
        {.name = "media check fails", .arrange = drivetests::mediaCheckFails, .result = TestResult::NOMEDIA},
        {.name = "no number of seeks", .parameters = {{"SectorPercentToTest", "50"}}, .result = TestResult::BADPARAMS},
        {.name = "end below start", .range = DirectRange{20, 10, 1, 5}, .result = TestResult::BADPARAMS, .events = {"TOTAL_SECTOR_GREATER_THAN_ZERO:140"}},
        {.name = "no seeks on a direct range", .range = DirectRange{10, 20, 1, 0}, .result = TestResult::BADPARAMS},
        {.name = "sector size 0", .configure = drivetests::noSectorSize, .result = TestResult::INTERNALERROR, .events = {"INVALID_BUFFER_SIZE:185"}},
        {.name = "start = end draws the start", .arrange = seeded({zero}), .range = startIsEnd(2), .reads = {10, 10}},
        {.name = "start = end draws one past it", .arrange = seeded({zero, one}), .range = startIsEnd(3),
         .result = TestResult::INTERNALERROR, .events = {"TOTAL_SECTORS_GREATER_THAN_DIFFERENCE:234"}, .reads = {10}},
        {.name = "read ends the test", .arrange = seeded({at3, at3, at5}, drivetests::readEndsTheTest(15)),
         .result = TestResult::INTERNALERROR, .reads = {13, 13, 15}},
        {.name = "failed twice", .arrange = seeded({at5}, drivetests::failsAndIsRerun(15)), .result = TestResult::FAIL, .passes = 2,
         .events = {"RERUN_TEST:92"}, .reads = twoPassesAt15},
        {.name = "healed by the re-run", .arrange = seeded({at5}, drivetests::failsAndIsRerun(15, true)), .passes = 2,
         .events = {"RERUN_TEST:92"}, .reads = twoPassesAt15},
    };
    // clang-format on
    SeedScript seeds({at3});
    runExitCases(
        cases, {{"StartRange", "10"}, {"EndRange", "20"}, {"NumberOfSeeks", "5"}}, driveOf(100),
        "libDrive/RandomSeekTest", nullptr, [this](const ExitCase& c, ScriptedDrive&) {
            const bool drawOutOfRange =
                c.events == std::vector<std::string>{"TOTAL_SECTORS_GREATER_THAN_DIFFERENCE:234"};
            EXPECT_EQ(wasLogged("libDrive.RandomSeekTest", 4,
                                "233 Error in random number calculation. Generated a "
                                "out of range random number."),
                      drawOutOfRange);
        });
}

TEST_F(RandomSeek, ErrorsAreCountedAgainstTheNumberOfSeeks) {
    // Ten seeks over [0, 1000]: the seeds of kSeeds decide which sectors they read.
    const std::vector<uint64_t> sectors = drawnSectors(0, 1000, 10);
    const std::vector<uint64_t> firstTwo = {sectors[0], sectors[1]};
    // clang-format off
    const ErrorCase cases[] = {
        {"stop at MaxErrors", {{"MaxErrors", "3"}}, sectors, TestResult::FAIL, 3, {"MAX_ERRORS_EXCEEDED"}, ""},
        {"under the threshold", {{"MaxErrors", "10"}, {"MinErrorPercentage", "25"}}, firstTwo, TestResult::PASS, 10, {"TEST_PASSED_WITH_ERRORS"}, "20.00"},
    };
    // clang-format on
    SeedScript seeds(kSeeds);
    runErrorCases(cases, {{"EndRange", "1000"}, {"NumberOfSeeks", "10"}}, driveOf(5000));
}

TEST_F(RandomSeek, ReportsTimedProgressAboutOnceASecond) {
    reset({{"EndRange", "4000"}, {"NumberOfSeeks", "3000"}});
    SeedScript seeds(kSeeds);
    // 10 ms a read: a report falls due after every 101 seeks. Sector 4000 may be drawn.
    CallRecordingDrive drive(device, driveOf(4001, 512, 10));
    drive.switches().provideEstimatedTime = true;

    EXPECT_EQ(run(drive), TestResult::PASS);

    const std::vector<uint64_t> sectors = drive.readSectors();
    const auto progress = host.progressReports();
    ASSERT_EQ(progress.size(), 29u);
    for (std::size_t i = 0; i < progress.size(); ++i) {
        const std::size_t seek = 101 * (i + 1);
        EXPECT_EQ(progress[i].key, "READ_SECTOR");
        EXPECT_EQ(progress[i].intervalMs, 1000.0);
        EXPECT_EQ(progress[i].get(L"ReadSector"), quel5::Value(sectors[seek]));
        EXPECT_EQ(progress[i].get(L"EndSector"), quel5::Value(4000u));
    }
    const std::vector<unsigned> percents = host.percents();
    ASSERT_EQ(percents.size(), 30u);
    for (std::size_t i = 0; i < 29; ++i) {
        EXPECT_EQ(percents[i], 101 * (i + 1) * 100 / 3000) << "seeks done before the report";
    }
    EXPECT_EQ(percents[29], 100u);
    const std::vector<unsigned> left = host.timesLeft();
    ASSERT_EQ(left.size(), 29u);
    EXPECT_EQ(left[9], 19u) << "ring full: 10000 ms, 1990 seeks to go";
    EXPECT_TRUE(wasLogged("libDrive.RandomSeekTest", 1, "288  Estimated Time Left 19"));
    EXPECT_EQ(host.stopPolls(), 29u);
}

TEST_F(RandomSeek, StopRequestsAreSeenAtReports) {
    const StopCase cases[] = {
        {"first report", 0, {}, {}, TestResult::USERABORTED, 102},
        {"third report", 2, {}, {}, TestResult::USERABORTED, 304},
    };
    SeedScript seeds(kSeeds);
    runStopCases(cases, {{"EndRange", "4000"}, {"NumberOfSeeks", "3000"}, {"MaxErrors", "0"}},
                 driveOf(4001, 512, 10));
}

}  // namespace

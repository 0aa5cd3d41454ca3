// CSurfaceScanTest on a simulated drive under the virtual clock: the blocks it reads for read
// amounts, percentages and seek counts (the shortened last block, strides that never stall),
// how every way out of a pass releases the tray, errors against planned blocks, progress and
// stop. Also the stride rule on its own.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ReadOnlyTestSupport.h"
#include "SurfaceScanStride.h"
#include "libDrive/SurfaceScanTest.h"

namespace {

using testsupport::ErrorCase;

using drivetests::CallRecordingDrive;
using drivetests::DirectRange;
using drivetests::driveOf;
using drivetests::ExitCase;
using quel5::TestResult;

using drivetests::Parameters;

TEST(SurfaceScanStride, NeverBelowOneSector) {
    const uint64_t most = std::numeric_limits<uint64_t>::max();
    const struct {
        uint32_t readAmount;
        double percent;
        uint64_t stride;
    } percentCases[] = {
        {8, 100.0, 8}, {8, 10.0, 80},         {63, 33.3, 189},
        {8, 0.0, 8},   {1, 1e-7, 1000000000}, {8, 200.0, 4},
        {1, 101.0, 1}, {0, 0.0, 1},           {0xFFFFFFFFu, 1e-300, most},
    };
    for (const auto& c : percentCases) {
        SCOPED_TRACE(testing::Message() << c.readAmount << " at " << c.percent << "%");
        EXPECT_EQ(kivrlibdrive::StrideForPercent(c.readAmount, c.percent), c.stride);
    }
    const struct {
        uint64_t range;
        uint32_t seeks;
        uint64_t stride;
    } seekCases[] = {
        {1000, 10, 100},
        {1000, 3, 333},
        {10, 100, 1},
        {10, 10, 1},
        {1ull << 32, 1, 1},
        {(1ull << 33) + 6, 2, 3},
        {(1ull << 32) + 7, 1, 7},
    };
    for (const auto& c : seekCases) {
        SCOPED_TRACE(testing::Message() << c.range << " / " << c.seeks);
        EXPECT_EQ(kivrlibdrive::StrideForSeeks(c.range, c.seeks), c.stride);
    }
}

using SurfaceScan = drivetests::ReadOnlyFixture<kivrlibdrive::CSurfaceScanTest>;

sim::SimulatedDriveConfig scanDrive(uint64_t total, uint32_t optimalReadAmount,
                                    uint32_t readMs = 0) {
    sim::SimulatedDriveConfig config = driveOf(total, 512, readMs);
    config.sectorsPerTrack = 63;
    config.optimalReadAmount = optimalReadAmount;
    return config;
}

// Blocks of `sectors` every `stride` from `start`, the last cut at `end`.
std::vector<std::pair<uint64_t, uint32_t>> blocks(uint64_t start, uint64_t end, uint64_t stride,
                                                  uint32_t sectors) {
    std::vector<std::pair<uint64_t, uint32_t>> found;
    for (uint64_t at = start; at < end; at += stride) {
        found.emplace_back(at, static_cast<uint32_t>(std::min<uint64_t>(sectors, end - at)));
    }
    return found;
}

struct BlockCase {
    const char* name;
    uint32_t optimalReadAmount;
    Parameters parameters;
    std::vector<std::pair<uint64_t, uint32_t>> blocks;  // first sector, sectors read
    bool tooHighLogged;
};

TEST_F(SurfaceScan, ReadsBlocksAStrideApartUpToTheEnd) {
    // clang-format off
    const BlockCase cases[] = {
        {"track-sized blocks, last one short", 0, {{"EndRange", "200"}, {"SectorPercentToTest", "100"}},
         {{0, 63}, {63, 63}, {126, 63}, {189, 11}}, false},
        {"optimal read amount", 16, {{"StartRange", "100"}, {"EndRange", "164"}, {"SectorPercentToTest", "100"}},
         blocks(100, 164, 16, 16), false},
        {"a quarter, last block short", 8, {{"EndRange", "100"}, {"SectorPercentToTest", "25"}},
         {{0, 8}, {32, 8}, {64, 8}, {96, 4}}, false},
        {"stride longer than the range", 63, {{"EndRange", "100"}, {"SectorPercentToTest", "10"}}, {{0, 63}}, false},
        {"NumberOfSeeks 0 is ignored", 16, {{"EndRange", "64"}, {"SectorPercentToTest", "100"}, {"NumberOfSeeks", "0"}},
         blocks(0, 64, 16, 16), false},
        {"few seeks read contiguously", 16, {{"EndRange", "1000"}, {"NumberOfSeeks", "10"}}, blocks(0, 1000, 16, 16), true},
        {"seeks exactly a block apart", 16, {{"EndRange", "160"}, {"NumberOfSeeks", "10"}}, blocks(0, 160, 16, 16), false},
        {"many seeks overlap", 16, {{"EndRange", "100"}, {"NumberOfSeeks", "20"}}, blocks(0, 100, 5, 16), false},
        {"more seeks than sectors", 16, {{"EndRange", "10"}, {"NumberOfSeeks", "100"}}, blocks(0, 10, 1, 16), false},
        {"up to the end of the drive", 16, {{"StartRange", "MAX-40"}, {"SectorPercentToTest", "100"}},
         blocks(4960, 5000, 16, 16), false},
    };
    // clang-format on
    for (const BlockCase& c : cases) {
        SCOPED_TRACE(c.name);
        reset(c.parameters);
        CallRecordingDrive drive(device, scanDrive(5000, c.optimalReadAmount));

        EXPECT_EQ(run(drive), TestResult::PASS);

        std::vector<std::pair<uint64_t, uint32_t>> read;
        for (const sim::Operation& operation : drive.operations()) {
            read.emplace_back(operation.startSector, operation.sectors);
            EXPECT_EQ(operation.requestedCount, operation.sectors) << "buffer and count agree";
        }
        EXPECT_EQ(read, c.blocks);
        EXPECT_EQ(drive.counters().prepareRead, c.blocks.size());
        EXPECT_EQ(wasLogged("libDrive.SurfaceScanTest", 1,
                            "161 NumberOfSeeks set too high; adjusting range to prevent coverage "
                            "overlaps"),
                  c.tooHighLogged);
        EXPECT_EQ(host.percents(), std::vector<unsigned>{100});
        EXPECT_EQ(host.stopPolls(), 0u);
    }
}

TEST_F(SurfaceScan, AQuotientWithoutLowBitsStillMovesOn) {
    // 2^32 sectors in one seek: the per-seek stride keeps 0 of its bits and becomes 1 sector.
    // Each read takes just over a second, so the second block is followed by the stop.
    reset({{"EndRange", "4294967296"}, {"NumberOfSeeks", "1"}});
    host.stopAfterPolls(0);
    CallRecordingDrive drive(device, scanDrive(1ull << 33, 16, 1001));

    EXPECT_EQ(run(drive), TestResult::USERABORTED);

    EXPECT_EQ(drive.readSectors(), (std::vector<uint64_t>{0, 1}));
    EXPECT_TRUE(wasLogged("libDrive.SurfaceScanTest", 1,
                          "131 Will test 4294967296 sectors in the range 0 to 4294967296"));
}

TEST_F(SurfaceScan, EveryWayOutOfAPassUnlocksTheTrayOnce) {
    const std::string problemAt64 = "222 Problem when testing sector 64 to 80";
    std::vector<uint64_t> twoPasses = drivetests::stepsFrom(0, 16, 7);
    twoPasses.insert(twoPasses.end(), twoPasses.begin(), twoPasses.end());
    // clang-format off
    const ExitCase cases[] = {
        drivetests::noHandleExit(),
        {.name = "media check fails", .arrange = drivetests::mediaCheckFails, .result = TestResult::NOMEDIA},
        {.name = "empty range", .range = DirectRange{30, 30}, .result = TestResult::BADPARAMS, .events = {"TOTAL_SECTOR_GREATER_THAN_ZERO:136"}},
        {.name = "no sectors per track", .configure = [](sim::SimulatedDriveConfig& c) { c.sectorsPerTrack = 0; },
         .result = TestResult::INTERNALERROR, .events = {"SECTORS_PER_TRACK_GREATER_THAN_ZERO:145"}},
        {.name = "sector size 0", .configure = drivetests::noSectorSize, .result = TestResult::INTERNALERROR, .events = {"INVALID_BUFFER_SIZE:178"}},
        {.name = "block larger than a drive call can take", .configure = [](sim::SimulatedDriveConfig& c) { c.optimalReadAmount = 1u << 23; },
         .result = TestResult::INTERNALERROR, .events = {"MSG_ERROR_ALLOCATING_MEMORY:188"}},
        {.name = "read ends the test", .arrange = drivetests::readEndsTheTest(40), .result = TestResult::INTERNALERROR,
         .reads = {0, 16, 32}, .problems = {"222 Problem when testing sector 32 to 48"}},
        {.name = "failed twice", .arrange = drivetests::failsAndIsRerun(70), .result = TestResult::FAIL, .passes = 2,
         .events = {"RERUN_TEST:82"}, .reads = twoPasses, .problems = {problemAt64, problemAt64}},
    };
    // clang-format on
    runExitCases(cases, {{"EndRange", "100"}, {"SectorPercentToTest", "100"}}, scanDrive(1000, 16),
                 "libDrive/SurfaceScanTest", "libDrive.SurfaceScanTest");
}

TEST_F(SurfaceScan, EachFailedBlockIsOneErrorAgainstThePlannedBlocks) {
    // Blocks of 10 sectors over [0, 100): ten blocks.
    // clang-format off
    const ErrorCase cases[] = {
        {"two bad sectors in one block", {{"MaxErrors", "10"}, {"MinErrorPercentage", "15"}}, {51, 59}, TestResult::PASS, 10, {"TEST_PASSED_WITH_ERRORS"}, "10.00"},
        {"stop at MaxErrors", {{"MaxErrors", "2"}}, {5, 15, 25}, TestResult::FAIL, 2, {"MAX_ERRORS_EXCEEDED"}, ""},
        {"no block planned in full", {{"SectorPercentToTest", "5"}, {"MaxErrors", "0"}, {"MinErrorPercentage", "50"}}, {0}, TestResult::PASS, 1, {"TEST_PASSED_WITH_ERRORS"}, "100.00"},
    };
    // clang-format on
    runErrorCases(cases, {{"EndRange", "100"}, {"SectorPercentToTest", "100"}},
                  scanDrive(1000, 10));
}

TEST_F(SurfaceScan, ReportsAboutOnceASecondAndPollsStopOnlyThen) {
    const struct {
        const char* name;
        std::optional<unsigned> pollsBeforeStop;
        TestResult result;
        std::size_t blocks;
    } cases[] = {
        {"to the end", std::nullopt, TestResult::PASS, 3000},
        {"stopped at the first report", 0u, TestResult::USERABORTED, 102},
        {"stopped at the tenth report", 9u, TestResult::USERABORTED, 1011},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        reset({{"StartRange", "1000"}, {"EndRange", "7000"}, {"SectorPercentToTest", "50"}});
        if (c.pollsBeforeStop) host.stopAfterPolls(*c.pollsBeforeStop);
        // Blocks of one sector every second sector, 10 ms each: a report every 101 blocks.
        CallRecordingDrive drive(device, scanDrive(8000, 1, 10));
        drive.switches().provideEstimatedTime = true;

        EXPECT_EQ(run(drive), c.result);

        EXPECT_EQ(drive.operations().size(), c.blocks);
        const auto progress = host.progressReports();
        const std::size_t reports = c.pollsBeforeStop ? *c.pollsBeforeStop + 1 : 29;
        ASSERT_EQ(progress.size(), reports);
        EXPECT_EQ(host.stopPolls(), reports);
        for (std::size_t i = 0; i < progress.size(); ++i) {
            EXPECT_EQ(progress[i].key, "READ_SECTOR");
            EXPECT_EQ(progress[i].intervalMs, 0.0);
            EXPECT_EQ(progress[i].get(L"ReadSector"), quel5::Value(1000 + 2 * 101 * (i + 1)));
            EXPECT_EQ(progress[i].get(L"EndSector"), quel5::Value(7000u));
        }
        const std::vector<unsigned> percents = host.percents();
        ASSERT_EQ(percents.size(), reports + 1);
        for (std::size_t i = 0; i < reports; ++i) {
            EXPECT_EQ(percents[i], 2 * 101 * (i + 1) * 100 / 6000) << "sectors passed";
        }
        EXPECT_EQ(percents.back(), 100u);
        const std::vector<unsigned> left = host.timesLeft();
        EXPECT_EQ(left.front(), 2u) << "1010 ms over a ring of 1000, 2899 blocks to go";
        if (left.size() >= 10) {
            EXPECT_EQ(left[9], 19u) << "ring full: 10000 ms, 1990 blocks to go";
            EXPECT_TRUE(wasLogged("libDrive.SurfaceScanTest", 1, "263  Estimated Time Left 19"));
        }
    }
}

}  // namespace

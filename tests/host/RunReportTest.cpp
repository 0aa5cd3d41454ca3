// The pieces of drivediag's report: failed sectors kept as runs, what the progress display
// shows, and the files other tools read.
#include <gtest/gtest.h>

#include "cli/ProgressTracker.h"
#include "cli/ReportFiles.h"
#include "cli/ReportText.h"
#include "support/TempFile.h"

namespace {

using host::OperationRecord;
using host::SectorRun;

TEST(SectorRunsTest, AddedRunsMergeWhenTheyOverlapOrTouch) {
    const struct {
        const char* name;
        std::vector<SectorRun> added;
        std::vector<SectorRun> runs;
    } cases[] = {
        {"apart", {{10, 1}, {12, 1}}, {{10, 1}, {12, 1}}},
        {"touching after", {{10, 2}, {12, 3}}, {{10, 5}}},
        {"touching before", {{12, 3}, {10, 2}}, {{10, 5}}},
        {"inside", {{10, 10}, {12, 2}}, {{10, 10}}},
        {"bridging two", {{10, 2}, {20, 2}, {11, 10}}, {{10, 12}}},
        {"swallowing several", {{5, 1}, {7, 1}, {9, 1}, {4, 8}}, {{4, 8}}},
        {"the last sector", {{UINT64_MAX - 1, 1}, {0, 1}}, {{0, 1}, {UINT64_MAX - 1, 1}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        host::SectorRuns runs;
        uint64_t sectors = 0;
        for (const SectorRun& run : c.added) runs.add(run.first, run.count);
        for (const SectorRun& run : c.runs) sectors += run.count;
        EXPECT_EQ(runs.runs(), c.runs);
        EXPECT_EQ(runs.sectorCount(), sectors);
    }
}

TEST(SectorRunsTest, ARecordCountsEveryTransferAndKeepsOnlyFailedSectors) {
    OperationRecord record;
    record.add(OperationRecord::Kind::Read, 0, 8, true);
    record.add(OperationRecord::Kind::Read, 8, 8, false);
    record.add(OperationRecord::Kind::Read, 12, 8, false);
    record.add(OperationRecord::Kind::Write, 100, 1, false);
    EXPECT_EQ(record.reads().operations, 3u);
    EXPECT_EQ(record.reads().sectors, 24u);
    EXPECT_EQ(record.reads().failedOperations, 2u);
    EXPECT_EQ(record.reads().failedSectors.runs(), (std::vector<SectorRun>{{8, 12}}));
    EXPECT_EQ(record.writes().failedSectors.runs(), (std::vector<SectorRun>{{100, 1}}));
    EXPECT_EQ(host::sectorRunsText({{1000, 5}, {2000, 1}, {3000, 2}}, 2),
              "1000-1004, 2000 and 1 more run");
}

TEST(ReadTimesTest, ReadsFallInTheirClassAndBlocksKeepTheirSlowest) {
    using host::TimeClass;
    const struct {
        uint64_t ms;
        bool failed;
        TimeClass expected;
    } classes[] = {
        {0, false, TimeClass::Under3ms},    {2, false, TimeClass::Under3ms},
        {3, false, TimeClass::Under10ms},   {49, false, TimeClass::Under50ms},
        {50, false, TimeClass::Under150ms}, {499, false, TimeClass::Under500ms},
        {500, false, TimeClass::Over500ms}, {1, true, TimeClass::Failed},
    };
    for (const auto& c : classes) EXPECT_EQ(host::timeClassOf(c.ms, c.failed), c.expected) << c.ms;

    host::ReadTimes times(100);  // one sector a block
    times.add(10, 4, 60, false);
    times.add(12, 1, 1, false);    // a faster read does not lower a block
    times.add(13, 2, 0, true);     // a failure raises it
    times.add(99, 5, 700, false);  // cut at the last sector
    EXPECT_EQ(times.blockClass(9), TimeClass::Unread);
    EXPECT_EQ(times.blockClass(10), TimeClass::Under150ms);
    EXPECT_EQ(times.blockClass(12), TimeClass::Under150ms);
    EXPECT_EQ(times.blockClass(13), TimeClass::Failed);
    EXPECT_EQ(times.blockClass(14), TimeClass::Failed);
    EXPECT_EQ(times.blockClass(15), TimeClass::Unread);
    EXPECT_EQ(times.blockClass(99), TimeClass::Over500ms);
    EXPECT_EQ(times.slowest(), (std::vector<host::TimedRead>{{99, 700}, {10, 60}, {12, 1}}));
    EXPECT_EQ(times.histogram()[static_cast<std::size_t>(TimeClass::Failed)], 1u);

    // A 16 TiB drive of 512-byte sectors: blocks of 4096 sectors, 4 MiB of classes.
    const host::ReadTimes huge(uint64_t{1} << 35);
    EXPECT_EQ(huge.sectorsPerBlock(), 4096u);
    EXPECT_EQ(huge.blockCount(), host::ReadTimes::kMaxBlocks);
}

// Times are milliseconds after the pass started.
TEST(ProgressTrackerTest, TimeLeftAndThePercentageShown) {
    const struct {
        const char* name;
        std::vector<unsigned int> percents;    // reported in order
        std::optional<unsigned int> estimate;  // the library's, when it gave one
        uint64_t atMs;                         // when asked
        unsigned int shown;
        std::optional<unsigned int> secondsLeft;
        unsigned int finishedInFull;  // finish(false)
        unsigned int stoppedEarly;    // finish(true)
    } cases[] = {
        {"nothing done yet", {0}, std::nullopt, 5000, 0, std::nullopt, 0, 0},
        {"a quarter in 10 s", {25}, std::nullopt, 10000, 25, 30, 25, 25},
        {"rounded up, never 0:00 with work left", {99}, std::nullopt, 100, 99, 1, 99, 99},
        {"the library's estimate wins", {50}, 7u, 1000, 50, 7, 50, 50},
        {"its 0 with most work ahead is not believed", {10}, 0u, 1000, 10, 9, 10, 10},
        {"its 0 near the end is", {96}, 0u, 1000, 96, 0, 96, 96},
        {"a closing 100 is held back until the pass is known to have got there",
         {37, 100},
         std::nullopt,
         1000,
         37,
         2,
         100,
         37},
        {"a pass that went on after 100 is back where it is",
         {100, 40},
         std::nullopt,
         1000,
         40,
         2,
         40,
         40},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        host::ProgressTracker tracker;
        tracker.startPass(10000);
        for (unsigned int percent : c.percents) tracker.percentDone(percent);
        if (c.estimate) tracker.libraryEstimate(*c.estimate);
        EXPECT_EQ(tracker.shown(), c.shown);
        EXPECT_EQ(tracker.secondsLeft(10000 + c.atMs), c.secondsLeft);
        EXPECT_EQ(tracker.finish(false), c.finishedInFull);
        EXPECT_EQ(tracker.finish(true), c.stoppedEarly);
    }
    EXPECT_EQ(host::ProgressTracker().secondsLeft(5000), std::nullopt) << "no pass, no estimate";
}

TEST(ProgressTrackerTest, LinesAreLetThroughOncePerInterval) {
    host::IntervalGate gate;
    const struct {
        uint64_t atMs;
        double intervalMs;
        bool admitted;
    } steps[] = {
        {0, 1000, true}, {999, 1000, false}, {1000, 1000, true}, {1500, 0, false},
        {2000, 0, true}, {2100, 100, true},  {2150, 100, false},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.atMs);
        EXPECT_EQ(gate.admit(step.intervalMs, step.atMs), step.admitted);
    }
}

TEST(ReportFilesTest, BadBlocksListEveryFailedSectorOnceAndMetricsLabelTheRun) {
    host::OperationRecord record;
    record.add(OperationRecord::Kind::Read, 7, 3, false);
    record.add(OperationRecord::Kind::Write, 8, 3, false);
    record.add(OperationRecord::Kind::Read, 100, 1, true);
    host::RunSummary summary;
    summary.test = "pattern";
    summary.operations = record;
    summary.result = "FAIL";
    summary.exitCode = 1;
    summary.sectorBytes = 512;
    summary.elapsedMs = 2000;

    const testsupport::TempFile badBlocks("bad-blocks", "stale");
    std::string error;
    ASSERT_TRUE(host::writeBadBlocksFile(badBlocks.text(), summary, &error)) << error;
    EXPECT_EQ(badBlocks.contents(), "7\n8\n9\n10\n");

    host::DeviceHeader header;
    header.device = "/dev/disk \"a\"\\b";
    const std::string metrics = host::metricsText(header, summary);
    const std::string labels = "{device=\"/dev/disk \\\"a\\\"\\\\b\",test=\"pattern\"";
    for (const std::string& sample :
         {"drivediag_passed" + labels + ",result=\"FAIL\"} 0\n",
          "drivediag_failed_sectors" + labels + ",operation=\"read\"} 3\n",
          "drivediag_failed_sectors" + labels + ",operation=\"write\"} 3\n",
          "drivediag_operations" + labels + ",operation=\"read\"} 2\n",
          "drivediag_throughput_bytes_per_second" + labels + "} 1792\n",
          "drivediag_duration_seconds" + labels + "} 2\n"}) {
        EXPECT_NE(metrics.find(sample), std::string::npos) << sample << metrics;
    }

    const std::string unwritable = badBlocks.text() + "/in-a-file";
    EXPECT_FALSE(host::writeReportFile(unwritable, metrics, &error));
    EXPECT_NE(error.find(unwritable), std::string::npos) << error;
}

}  // namespace

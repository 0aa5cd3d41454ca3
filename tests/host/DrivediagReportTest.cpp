// What drivediag tells a person and a program about a run: the device header, the range, the
// summary of failed sectors and the bad-blocks file for every test on a simulated drive with a
// bad span; JSON lines that carry their schema; progress kept to one line per interval. Time is
// virtual.
#include <gtest/gtest.h>

#include <sstream>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "support/ScopedVirtualClock.h"
#include "support/TempFile.h"

namespace {

using hosttest::runDrivediag;
using hosttest::RunOutput;
using Args = std::vector<std::string>;

class DrivediagReportTest : public ::testing::Test {
protected:
    testsupport::ScopedVirtualClock clock_;
};

// Sector numbers in the bad-blocks file.
std::vector<uint64_t> sectorsIn(const std::string& badBlocks) {
    std::vector<uint64_t> sectors;
    std::istringstream lines(badBlocks);
    for (std::string line; std::getline(lines, line);) sectors.push_back(std::stoull(line));
    return sectors;
}

std::vector<uint64_t> span(uint64_t first, uint64_t count) {
    std::vector<uint64_t> sectors;
    for (uint64_t sector = first; sector < first + count; ++sector) sectors.push_back(sector);
    return sectors;
}

// The text after `label` on the first line that starts with it.
std::string field(const RunOutput& run, const std::string& label) {
    const std::string line = run.lineWith({label});
    return line.empty() ? ""
                        : line.substr(line.find_first_not_of(' ', line.find(label) + label.size()));
}

TEST_F(DrivediagReportTest, EveryTestReportsTheSectorsItCouldNotTransfer) {
    const std::string small = "sim:1MiB,bad=1000+5";
    const Args seeks = {"--set", "MaxErrors=100", "--set", "NumberOfSeeks=2048"};
    const struct {
        const char* test;
        std::string device;
        Args extra;
        const char* range;
        const char* reads;             // the summary's line, "" when the test draws at random
        std::vector<uint64_t> failed;  // the bad-blocks file
    } cases[] = {
        {"linear-seek", small, seeks, "sectors 0 to 2047 (2048 sectors); 2048 seeks",
         "2048 operations, 2048 sectors; 5 failed, 5 sectors: 1000-1004", span(1000, 5)},
        // Every sector twice, from both ends inward: each bad one fails on both visits.
        {"funnel-seek", small, seeks, "sectors 0 to 2047 (2048 sectors); 2048 seeks",
         "4096 operations, 4096 sectors; 10 failed, 5 sectors: 1000-1004", span(1000, 5)},
        {"read-compare", small, seeks, "sectors 0 to 2047 (2048 sectors); 2048 seeks",
         "4091 operations, 4091 sectors; 5 failed, 5 sectors: 1000-1004", span(1000, 5)},
        // Blocks of 63 sectors: the failed block counts all its sectors.
        {"surface-scan",
         small,
         {"--set", "MaxErrors=100", "--set", "SectorPercentToTest=100"},
         "sectors 0 to 2047 (2048 sectors); testing 2048 sectors (100 %)",
         "33 operations, 2048 sectors; 1 failed, 63 sectors: 945-1007",
         span(945, 63)},
        {"pattern",
         small,
         {"--destructive", "--set", "MaxErrors=100", "--set", "NumberOfSeeks=2048"},
         "sectors 0 to 2047 (2048 sectors); 2048 seeks",
         "38803 operations, 38803 sectors; 5 failed, 5 sectors: 1000-1004",
         span(1000, 5)},
        // 256-sector blocks over the last 32768 sectors.
        {"cache",
         "sim:16MiB,bad=20000+5",
         {"--destructive", "--set", "MaxErrors=100"},
         "sectors 0 to 32767 (32768 sectors); 1 seek",
         "1275 operations, 326400 sectors; 5 failed, 256 sectors: 19968-20223",
         span(19968, 256)},
        // Draws are random: with 200 of 2047 sectors bad, all 2047 draws miss them once in e^200
        // runs (five bad sectors were missed once in 150).
        {"random-seek",
         "sim:1MiB,bad=1000+200",
         seeks,
         "sectors 0 to 2046 (2047 sectors); 2047 seeks",
         "",
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.test);
        const testsupport::TempFile badBlocks("bad-blocks", "");
        Args args = {"run", c.test, "--device", c.device, "--bad-blocks", badBlocks.text()};
        args.insert(args.end(), c.extra.begin(), c.extra.end());
        const RunOutput run = runDrivediag(args);
        EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::FAIL)) << run.out << run.err;
        EXPECT_EQ(run.lines.at(1), "Device:  " + c.device + " (simulated drive)");
        EXPECT_NE(run.lineWith({"  Capacity: ", " sectors, "}), "") << run.out;
        EXPECT_EQ(field(run, "Range:"), c.range);
        const std::vector<uint64_t> listed = sectorsIn(badBlocks.contents());
        if (*c.reads != '\0') {
            EXPECT_EQ(field(run, "  Reads:"), c.reads);
            EXPECT_EQ(listed, c.failed);
        } else {
            ASSERT_FALSE(listed.empty());
            for (uint64_t sector : listed) EXPECT_TRUE(sector >= 1000 && sector < 1200) << sector;
        }
        const std::string writes = field(run, "  Writes:");
        if (std::string(c.test) == "pattern" || std::string(c.test) == "cache") {
            EXPECT_NE(writes.find("; none failed"), std::string::npos) << writes;
        } else {
            EXPECT_EQ(writes, "none");
        }
    }
}

TEST_F(DrivediagReportTest, APassWithFailedReadsSaysSo) {
    const RunOutput run =
        runDrivediag({"run", "linear-seek", "--device", "sim:1MiB,bad=100+500", "--set",
                      "MaxErrors=100000", "--set", "MinErrorPercentage=50"});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_EQ(field(run, "  Reads:"),
              "1024 operations, 1024 sectors; 250 failed, 250 sectors: 100, 102, 104, 106, 108, "
              "110, 112, 114, 116, 118, 120, 122, 124, 126, 128, 130, 132, 134, 136, 138 and 230 "
              "more runs");
    EXPECT_EQ(run.lines.back(),
              "Note: PASS under the test's error rules, but 250 transfers failed (see above): the "
              "drive is not free of errors.");
}

// 2048 reads at 1 ms, ten of them 40 ms slower, five failing: the histogram and the slowest
// reads on the one clock, exactly.
TEST_F(DrivediagReportTest, ReadTimesAreCountedPerClassAndTheSlowestNamed) {
    const Args device = {"--device", "sim:1MiB,bad=1000+5,slow=1500+10:40,cost=1",
                         "--set",    "NumberOfSeeks=2048",
                         "--set",    "MaxErrors=100"};
    Args text = {"run", "linear-seek"};
    text.insert(text.end(), device.begin(), device.end());
    const RunOutput run = runDrivediag(text);
    EXPECT_EQ(field(run, "  Read times:"),
              "under 3 ms: 2033, 3-10 ms: 0, 10-50 ms: 10, 50-150 ms: 0, 150-500 ms: 0, over 500 "
              "ms: 0, failed: 5");
    std::string slowest;
    for (int sector = 1500; sector < 1510; ++sector)
        slowest += (slowest.empty() ? "" : ", ") + std::string("sector ") + std::to_string(sector) +
                   " (41 ms)";
    EXPECT_EQ(field(run, "  Slowest reads:"), slowest);

    text.push_back("--json");
    const std::string summary = runDrivediag(text).lineWith({"\"type\":\"summary\""});
    EXPECT_NE(summary.find("\"readTimes\":{\"histogram\":{\"under3ms\":2033,\"under10ms\":0,"
                           "\"under50ms\":10,\"under150ms\":0,\"under500ms\":0,\"over500ms\":0,"
                           "\"failed\":5},\"slowest\":[{\"sector\":1500,\"ms\":41},"),
              std::string::npos)
        << summary;
}

// 2048 one-sector cells of 8 pixels in rows of 100 from (190, 70): the bad span is black, the
// slow one has the 10-50 ms colour.
TEST_F(DrivediagReportTest, TheSurfaceMapColoursEachBlockByItsSlowestRead) {
    const testsupport::TempFile map("map", "");
    const RunOutput run = runDrivediag(
        {"run", "linear-seek", "--device", "sim:1MiB,bad=1000+5,slow=1500+10:40,cost=1", "--set",
         "NumberOfSeeks=2048", "--set", "MaxErrors=100", "--map", map.text()});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    const std::string svg = map.contents();
    for (const std::string& cells :
         {// row 10: sectors 1000-1004 failed, 1005-1099 fast
          std::string("<rect x=\"190\" y=\"150\" width=\"40\" height=\"8\" fill=\"#000000\"/>"),
          std::string("<rect x=\"230\" y=\"150\" width=\"760\" height=\"8\" fill=\"#1a9850\"/>"),
          // row 15: sectors 1500-1509 slow
          std::string("<rect x=\"190\" y=\"190\" width=\"80\" height=\"8\" fill=\"#d9ef8b\"/>"),
          // the last row holds sectors 2000-2047
          std::string("<rect x=\"190\" y=\"230\" width=\"384\" height=\"8\" fill=\"#1a9850\"/>"),
          std::string(">sector 1000 (0.00 GB)</text>"), std::string(">failed: 5</text>"),
          std::string(">10-50 ms: 10</text>"), std::string("Result: FAIL (exit code 1)")}) {
        EXPECT_NE(svg.find(cells), std::string::npos) << cells;
    }
}

TEST_F(DrivediagReportTest, JsonLinesCarryTheSchemaAndTheReportIsOneObjectEach) {
    const RunOutput run =
        runDrivediag({"run", "linear-seek", "--json", "--device", "sim:1MiB,bad=0+1000,cost=5",
                      "--set", "NumberOfSeeks=2048", "--set", "MaxErrors=3"});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    for (const std::string& line : run.lines) {
        EXPECT_EQ(line.rfind("{\"schema\":1,\"type\":\"", 0), 0u) << line;
        EXPECT_EQ(line.back(), '}') << line;
    }
    EXPECT_NE(run.lineWith({"{\"schema\":1,\"type\":\"device\",\"device\":\"sim:1MiB,bad=0+1000,"
                            "cost=5\",\"kind\":\"simulated drive\",\"model\":\"\",\"serial\":\"\","
                            "\"totalSectors\":2048,\"totalBytes\":1048576,\"sectorBytes\":512,"
                            "\"physicalSectorBytes\":512,\"medium\":null,\"directIo\":null}"}),
              "")
        << run.out;
    EXPECT_NE(run.lineWith({"{\"schema\":1,\"type\":\"range\",\"first\":0,\"end\":2048,"
                            "\"sectorsToTest\":0,\"seeks\":2048,\"percent\":0}"}),
              "");
    // Stopped at its third failed read, on sector 4 of 2048: the pass got nowhere near 100 %.
    const std::string summary = run.lineWith({"\"type\":\"summary\""});
    for (const std::string& part :
         {std::string("\"test\":\"linear-seek\",\"result\":\"FAIL\",\"exitCode\":1,"
                      "\"passedWithFailures\":false"),
          std::string("\"reads\":{\"operations\":3,\"sectors\":3,\"failedOperations\":3,"
                      "\"failedSectors\":3,\"failedRuns\":[[0,3]],"
                      "\"failedRunsComplete\":true}"),
          std::string("\"writes\":{\"operations\":0,"), std::string("\"compareErrors\":0,"),
          std::string("\"elapsedMs\":15,"), std::string("\"percentReached\":0}")}) {
        EXPECT_NE(summary.find(part), std::string::npos) << part << "\n" << summary;
    }
    EXPECT_EQ(run.countLinesWith("\"percent\":100}"), 0u) << run.out;
    EXPECT_EQ(run.lines.back(),
              "{\"schema\":1,\"type\":\"result\",\"result\":\"FAIL\",\"exitCode\":1}");
}

// A read-compare of 2048 positions at 5 ms a read takes about 20 s: about 20 progress lines,
// not one per sector.
TEST_F(DrivediagReportTest, ProgressLinesStayWithinOnePerInterval) {
    for (const bool json : {false, true}) {
        SCOPED_TRACE(json ? "json" : "text");
        Args args = {"run",   "read-compare",      "--device", "sim:1MiB,cost=5",
                     "--set", "NumberOfSeeks=2048"};
        if (json) args.push_back("--json");
        const uint64_t before = clock_.elapsedMilliseconds();
        const RunOutput run = runDrivediag(args);
        const uint64_t seconds = (clock_.elapsedMilliseconds() - before) / 1000;
        EXPECT_EQ(run.exitCode, 0) << run.err;
        ASSERT_GE(seconds, 15u);
        const std::size_t progress =
            run.countLinesWith(json ? "\"type\":\"progress\"" : "Reading sector ");
        EXPECT_GE(progress, seconds - 1);
        EXPECT_LE(progress, seconds + 1);
        if (json) {
            EXPECT_LE(run.countLinesWith("\"type\":\"percent\""), seconds + 2);
        }
    }
}

}  // namespace

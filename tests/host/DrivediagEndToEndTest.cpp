// drivediag from command line to exit code on simulated drives and an image file. Time is
// virtual: a simulated drive's cost per read advances the clock at once, so the runs that show
// progress finish in milliseconds.
#include <gtest/gtest.h>

#include <csignal>

#include "DrivediagRun.h"
#include "cli/ConsoleHost.h"
#include "cli/ExitCodes.h"
#include "cli/StopRequest.h"
#include "kiv/Log.h"
#include "support/ScopedVirtualClock.h"
#include "support/TempFile.h"

namespace {

using hosttest::runDrivediag;
using hosttest::RunOutput;
using Args = std::vector<std::string>;

class DrivediagEndToEndTest : public ::testing::Test {
protected:
    testsupport::ScopedVirtualClock clock_;
};

TEST_F(DrivediagEndToEndTest, ResultsAndExitCodesOfRunsOnSimulatedDrives) {
    const struct {
        const char* name;
        Args extra;
        const char* result;
        int exitCode;
        std::vector<std::string> eventLine;  // parts of one event line; empty: no event at all
    } cases[] = {
        {"clean drive", {"--device", "sim:1000s"}, "PASS", 0, {}},
        {"one bad sector read", {"--device", "sim:1000s,bad=500"}, "FAIL", 1, {}},
        {"under the error percentage",
         {"--device", "sim:1000s,bad=500", "--set", "MinErrorPercentage=5"},
         "PASS",
         0,
         {"WARNING: The test passed, but 1.00% of the tested sectors had errors (allowed: "
          "5.00%)."}},
        {"error limit overridden to 1",
         {"--device", "sim:1000s,bad=500", "--set", "MaxErrors=1"},
         "FAIL",
         1,
         {"ERROR: The test stopped after reaching its limit of 1 errors."}},
        {"internal error", {"--device", "sim:1000s,internal=500"}, "INTERNALERROR", 5, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Args args = {"run", "linear-seek", "--set", "NumberOfSeeks=100"};
        args.insert(args.end(), c.extra.begin(), c.extra.end());
        const RunOutput run = runDrivediag(args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.out << run.err;
        ASSERT_FALSE(run.lines.empty());
        EXPECT_EQ(run.result(),
                  std::string(c.result) + " (exit code " + std::to_string(c.exitCode) + ")");
        EXPECT_EQ(run.lines.front().rfind("Running linear-seek on sim:1000s", 0), 0u)
            << run.lines.front();
        if (c.eventLine.empty()) {
            EXPECT_EQ(run.countLinesWith("WARNING:") + run.countLinesWith("ERROR:") +
                          run.countLinesWith("INFO:"),
                      0u)
                << run.out;
        } else {
            EXPECT_NE(run.lineWith(c.eventLine), "") << run.out;
        }
        EXPECT_EQ(run.err, "");
    }
}

// A size past 64 bits once wrapped to a small range: it ends as bad parameters before any
// sector is read.
TEST_F(DrivediagEndToEndTest, AnOverflowingRangeTextIsABadParameter) {
    const RunOutput run = runDrivediag({"run", "linear-seek", "--json", "--device", "sim:4GiB",
                                        "--set", "EndRange=17179869185GB"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::BADPARAMS)) << run.err;
    EXPECT_NE(
        run.lineWith({"\"type\":\"event\"", "\"key\":\"END_RANGE_GREATER_THAN_START_RANGE\""}), "");
    EXPECT_EQ(run.countLinesWith("\"type\":\"progress\""), 0u) << "no sector was read";
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.back(),
              "{\"schema\":1,\"type\":\"result\",\"result\":\"BADPARAMS\",\"exitCode\":3}");
}

TEST_F(DrivediagEndToEndTest, OverridesReplaceDefaultsInTheStartLine) {
    const RunOutput plain = runDrivediag({"run", "linear-seek", "--device", "sim:1000s"});
    EXPECT_EQ(plain.lines.front(),
              "Running linear-seek on sim:1000s with MaxErrors=10 NumberOfSeeks=1000");
    const RunOutput changed =
        runDrivediag({"run", "linear-seek", "--device", "sim:1000s", "--set", "NumberOfSeeks=7",
                      "--set", "MaxErrors=", "--set", "StartRange=MIN+10%"});
    EXPECT_EQ(changed.lines.front(),
              "Running linear-seek on sim:1000s with NumberOfSeeks=7 StartRange=MIN+10%");
}

TEST_F(DrivediagEndToEndTest, PlainRunOnTheBuiltInDriveShowsProgressAndItsBadSectors) {
    const RunOutput run = runDrivediag({"run", "linear-seek"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::FAIL)) << run.out << run.err;
    EXPECT_EQ(run.lines.front().rfind("Running linear-seek on sim:1GiB,", 0), 0u);
    // About 770 reads of 3 ms before the worn area: a report after every second that passed.
    const std::size_t reports = run.countLinesWith("Reading sector ");
    EXPECT_GE(reports, 2u);
    EXPECT_LE(reports, 3u);
    EXPECT_NE(run.lineWith({"[", "%  Reading sector ", " of 2097152", " left"}), "") << run.out;
    EXPECT_NE(run.lineWith({"ERROR: The test stopped after reaching its limit of 10 errors."}), "")
        << run.out;
    EXPECT_EQ(run.result(), "FAIL (exit code 1)");
}

TEST_F(DrivediagEndToEndTest, JsonRunWritesOneObjectPerLine) {
    const RunOutput run =
        runDrivediag({"run", "linear-seek", "--json", "--device", "sim:1000s,bad=500,cost=50",
                      "--set", "NumberOfSeeks=100", "--set", "MaxErrors=1"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::FAIL)) << run.err;
    ASSERT_GE(run.lines.size(), 3u);
    for (const std::string& line : run.lines) {
        EXPECT_EQ(line.front(), '{') << line;
        EXPECT_EQ(line.back(), '}') << line;
    }
    EXPECT_EQ(run.lines.front(),
              "{\"schema\":1,\"type\":\"start\",\"test\":\"linear-seek\",\"device\":\"sim:1000s,"
              "bad=500,cost=50\","
              "\"parameters\":{\"MaxErrors\":\"1\",\"NumberOfSeeks\":\"100\"}}");
    EXPECT_EQ(run.lines.back(),
              "{\"schema\":1,\"type\":\"result\",\"result\":\"FAIL\",\"exitCode\":1}");
    const std::string event =
        run.lineWith({"\"type\":\"event\"", "\"key\":\"MAX_ERRORS_EXCEEDED\""});
    EXPECT_NE(event.find("\"severity\":\"error\""), std::string::npos) << event;
    EXPECT_NE(event.find("\"variables\":{\"MaxError\":1}"), std::string::npos) << event;
    EXPECT_NE(event.find("\"text\":\"The test stopped after reaching its limit of 1 errors.\""),
              std::string::npos)
        << event;
    EXPECT_NE(event.find("\"source\":\"libDrive/"), std::string::npos) << event;
    EXPECT_NE(event.find("\"line\":"), std::string::npos) << event;
    // 50 reads of 50 ms before the bad sector: progress after each second that passed.
    const std::string progress = run.lineWith({"\"type\":\"progress\"", "\"key\":\"READ_SECTOR\""});
    EXPECT_NE(progress.find("\"variables\":{\"ReadSector\":"), std::string::npos) << progress;
    EXPECT_NE(progress.find(",\"EndSector\":1000}"), std::string::npos) << progress;
    EXPECT_NE(progress.find("\"text\":\"Reading sector "), std::string::npos) << progress;
    EXPECT_NE(run.lineWith({"\"type\":\"percent\",\"percent\":"}), "");
    EXPECT_NE(run.lineWith({"\"type\":\"timeLeft\",\"seconds\":"}), "");
    EXPECT_EQ(run.countLinesWith("\"percent\":100}"), 0u) << "stopped at its error limit";
}

TEST_F(DrivediagEndToEndTest, AnImageFileIsTestedThroughTheBlockDrive) {
    const testsupport::TempImage image("end-to-end", 512 * 1024);
    const RunOutput run =
        runDrivediag({"run", "linear-seek", "--device", image.text(), "--set", "NumberOfSeeks=64"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::PASS)) << run.out << run.err;
    EXPECT_EQ(run.result(), "PASS (exit code 0)");
}

TEST_F(DrivediagEndToEndTest, LogFileReceivesTheLibraryLogFromTheChosenPriority) {
    const struct {
        const char* level;
        bool tracesEntry;
    } cases[] = {{"1", true}, {"2", false}, {"4", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.level);
        const testsupport::TempFile log("log", "");
        const int priorityBefore = kiv::LogFactory::getPriority();
        const RunOutput run =
            runDrivediag({"run", "linear-seek", "--device", "sim:1000s", "--log", log.text(),
                          "--log-level", c.level, "--set", "NumberOfSeeks=10"});
        EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::PASS)) << run.err;
        const std::string logged = log.contents();
        EXPECT_EQ(logged.find("Entering CLinearSeekTest::Run") != std::string::npos, c.tracesEntry)
            << logged;
        EXPECT_EQ(kiv::LogFactory::getPriority(), priorityBefore);
    }
}

TEST_F(DrivediagEndToEndTest, BadCommandLinesGiveAClearErrorAndTheUsageCode) {
    const struct {
        Args args;
        int exitCode;
        const char* errorMentions;
    } cases[] = {
        {{"run", "linear-seek", "--set", "Bogus=1"}, 64, "unknown parameter \"Bogus\""},
        {{"run", "linear-seek", "--set", "MaxErrors=abc"}, 64, "bad value \"abc\" for MaxErrors"},
        {{"run", "linear-seek", "--set", "SectorPercentToTest=101"}, 64, "for SectorPercentToTest"},
        {{"run", "linear-seek", "--device", "sim:1XB"}, 64, "is not a size"},
        {{"run", "linear-seek", "--device", ""}, 64, "device text is empty"},
        {{"run", "no-such-test"}, 64, "unknown test \"no-such-test\" (tests: linear-seek"},
        {{"run", "linear-seek", "--frobnicate"}, 64, "unknown option --frobnicate"},
        {{"run", "linear-seek", "--log", "/nonexistent-dir/x/drivediag.log"},
         64,
         "cannot open the log file"},
        {{"run", "linear-seek", "--device", "/nonexistent-dir/disk.img"},
         66,
         "cannot open /nonexistent-dir/disk.img"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.errorMentions);
        const RunOutput run = runDrivediag(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_NE(run.err.find(c.errorMentions), std::string::npos) << run.err;
        EXPECT_EQ(run.out, "") << "nothing may run after a bad command line";
    }
}

TEST_F(DrivediagEndToEndTest, TestsCommandShowsEveryTestWithItsDefaults) {
    const RunOutput text = runDrivediag({"tests"});
    EXPECT_EQ(text.exitCode, host::exitCodeFor(quel5::TestResult::PASS));
    EXPECT_EQ(text.lines.at(0), "linear-seek");
    EXPECT_EQ(text.lines.at(2), "    defaults: MaxErrors=10 NumberOfSeeks=1000");
    const RunOutput json = runDrivediag({"tests", "--json"});
    EXPECT_NE(json.lineWith({"{\"schema\":1,\"type\":\"test\",\"name\":\"linear-seek\"",
                             "\"defaults\":{\"MaxErrors\":\"10\",\"NumberOfSeeks\":\"1000\"}}"}),
              "")
        << json.out;
}

TEST_F(DrivediagEndToEndTest, HelpVersionAndABareCommandLine) {
    const std::string runUsage = "usage: drivediag run TEST";
    const std::string generalUsage = "usage: drivediag COMMAND";
    const struct {
        Args args;
        int exitCode;
        bool onStandardError;
        std::string mentions;
    } cases[] = {
        {{}, host::kExitUsage, true, generalUsage},
        {{"--help"}, 0, false, generalUsage},
        {{"help"}, 0, false, generalUsage},
        {{"help", "run"}, 0, false, runUsage},
        {{"run", "--help"}, 0, false, runUsage},
        {{"help", "restore"}, 0, false, "usage: drivediag restore JOURNAL"},
        {{"tests", "--help"}, 0, false, "usage: drivediag tests [--json]"},
        {{"list", "-h"}, 0, false, "usage: drivediag list [--json]"},
        {{"help", "make-checksum-file"}, 0, false, "usage: drivediag make-checksum-file DATA OUT"},
        {{"help", "frobnicate"}, host::kExitUsage, true, "no help on \"frobnicate\""},
        {{"--version"}, 0, false, "drivediag 0.1.0\n"},
        {{"--version", "--json"},
         0,
         false,
         "{\"schema\":1,\"type\":\"version\",\"version\":\"0.1.0\"}\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mentions);
        const RunOutput run = runDrivediag(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        const std::string& shown = c.onStandardError ? run.err : run.out;
        EXPECT_NE(shown.find(c.mentions), std::string::npos) << shown;
        EXPECT_EQ((c.onStandardError ? run.out : run.err), "");
    }
    EXPECT_NE(runDrivediag({"help", "run"}).out.find("--destructive"), std::string::npos);
}

TEST_F(DrivediagEndToEndTest, ParameterKeysAreMatchedWithoutRegardToCase) {
    const RunOutput run = runDrivediag({"run", "linear-seek", "--device", "sim:1MiB,bad=1000+5",
                                        "--set", "maxerrors=3", "--set", "NUMBEROFSEEKS=2048"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::FAIL)) << run.err;
    EXPECT_EQ(run.lines.front(),
              "Running linear-seek on sim:1MiB,bad=1000+5 with MaxErrors=3 NumberOfSeeks=2048");
}

TEST(StopRequestTest, CtrlCRequestsAStopThatTheHostReports) {
    std::ostringstream out;
    host::TextHost host(out, host::PromptAnswer::Cancel, false);
    host::installInterruptHandler();
    host::clearStopRequest();
    EXPECT_FALSE(host.stopRequested());
    std::raise(SIGINT);
    EXPECT_TRUE(host.stopRequested());
    host::removeInterruptHandler();
    host::clearStopRequest();
    EXPECT_FALSE(host.stopRequested());
}

}  // namespace

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
        {"internal error", {"--device", "sim:1000s,internal=500"}, "INTERNALERROR", 5, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Args args = {"run", "linear-seek", "--set", "NumberOfSeeks=100"};
        args.insert(args.end(), c.extra.begin(), c.extra.end());
        const RunOutput run = runDrivediag(args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.out << run.err;
        EXPECT_EQ(run.result(),
                  std::string(c.result) + " (exit code " + std::to_string(c.exitCode) + ")");
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

// Keys are matched without regard to case and shown as the library spells them; an empty value
// drops the default.
TEST_F(DrivediagEndToEndTest, OverridesReplaceDefaultsInTheStartLine) {
    const RunOutput changed =
        runDrivediag({"run", "linear-seek", "--device", "sim:1000s", "--set", "numberofseeks=7",
                      "--set", "MAXERRORS=", "--set", "StartRange=MIN+10%"});
    EXPECT_EQ(changed.lines.front(),
              "Running linear-seek on sim:1000s with NumberOfSeeks=7 StartRange=MIN+10%");
}

TEST_F(DrivediagEndToEndTest, PlainRunOnTheBuiltInDriveShowsProgressAndItsBadSectors) {
    const RunOutput run = runDrivediag({"run", "linear-seek"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::FAIL)) << run.out << run.err;
    EXPECT_EQ(run.lines.front().rfind("Running linear-seek on sim:1GiB,", 0), 0u);
    // About 770 reads of 3 ms before the worn area: long enough for progress with time left.
    EXPECT_NE(run.lineWith({"[", "%  Reading sector ", " of 2097152", " left"}), "") << run.out;
    EXPECT_NE(run.lineWith({"ERROR: The test stopped after reaching its limit of 10 errors."}), "")
        << run.out;
}

TEST_F(DrivediagEndToEndTest, JsonRunWritesOneObjectPerLine) {
    const RunOutput run =
        runDrivediag({"run", "linear-seek", "--json", "--device", "sim:1000s,bad=500,cost=50",
                      "--set", "NumberOfSeeks=100", "--set", "MaxErrors=1"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(quel5::TestResult::FAIL)) << run.err;
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.front(),
              "{\"schema\":1,\"type\":\"start\",\"test\":\"linear-seek\",\"device\":\"sim:1000s,"
              "bad=500,cost=50\","
              "\"parameters\":{\"MaxErrors\":\"1\",\"NumberOfSeeks\":\"100\"}}");
    EXPECT_NE(run.lineWith({"\"type\":\"event\"", "\"key\":\"MAX_ERRORS_EXCEEDED\"",
                            "\"severity\":\"error\"", "\"variables\":{\"MaxError\":1}",
                            "\"text\":\"The test stopped after reaching its limit of 1 errors.\"",
                            "\"source\":\"libDrive/", "\"line\":"}),
              "")
        << run.out;
    // 50 reads of 50 ms before the bad sector: progress after each second that passed.
    EXPECT_NE(run.lineWith({"\"type\":\"progress\"", "\"key\":\"READ_SECTOR\"",
                            "\"variables\":{\"ReadSector\":", ",\"EndSector\":1000}",
                            "\"text\":\"Reading sector "}),
              "")
        << run.out;
    EXPECT_NE(run.lineWith({"\"type\":\"percent\",\"percent\":"}), "");
    EXPECT_NE(run.lineWith({"\"type\":\"timeLeft\",\"seconds\":"}), "");
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

// Refused with one reason before the device is opened: nothing may run.
TEST_F(DrivediagEndToEndTest, BadCommandLinesGiveOneClearReasonAndTheirCode) {
    const std::string range = "A range text is a sector number (100000), a size in KB, MB or GB";
    const auto linearSeek = [](Args sets) {
        Args args = {"run", "linear-seek", "--device", "sim:1MiB"};
        for (std::string& set : sets) args.insert(args.end(), {"--set", std::move(set)});
        return args;
    };
    const struct {
        Args args;
        int exitCode;
        std::vector<std::string> says;
    } cases[] = {
        {{"run", "linear-seek", "--set", "Bogus=1"}, 64, {"unknown parameter \"Bogus\""}},
        {linearSeek({"MaxErrors=abc"}), 64, {"bad value \"abc\" for MaxErrors"}},
        {linearSeek({"SectorPercentToTest=101"}), 64, {"for SectorPercentToTest"}},
        {{"run", "linear-seek", "--device", "sim:1XB"}, 64, {"is not a size"}},
        {{"run", "linear-seek", "--device", ""}, 64, {"device text is empty"}},
        {{"run", "no-such-test"}, 64, {"unknown test \"no-such-test\" (tests: linear-seek"}},
        {{"run", "linear-seek", "--frobnicate"}, 64, {"unknown option --frobnicate"}},
        {{"run", "linear-seek", "--log", "/nonexistent-dir/x/drivediag.log"},
         64,
         {"cannot open the log file"}},
        {{"run", "linear-seek", "--device", "/nonexistent-dir/disk.img"},
         66,
         {"cannot open /nonexistent-dir/disk.img"}},
        // Range texts the library cannot evaluate, and amounts of nothing to test.
        {linearSeek({"StartRange=MAX+5"}),
         64,
         {"the StartRange text \"MAX+5\" is not a range.", range}},
        {{"run", "surface-scan", "--device", "sim:1MiB", "--set", "EndRange=12XB"},
         64,
         {"the EndRange text \"12XB\" is not a range.", range}},
        {linearSeek({"StartRange=" + std::string(30000, '1')}),
         64,
         {"the StartRange text \"111", range}},
        {linearSeek({"AdjustForLargeDrives=true", "LargeDriveSize=1", "LargeDriveEndRange=abc"}),
         64,
         {"the LargeDriveEndRange text \"abc\" is not a range.", range}},
        {linearSeek({"NumberOfSeeks=0"}),
         64,
         {"linear-seek tests as many positions as NumberOfSeeks says; set it to 1 or more "
          "(the default is 1000)"}},
        {{"run", "surface-scan", "--device", "sim:1MiB", "--set", "SectorPercentToTest="},
         64,
         {"surface-scan tests as many sectors as SectorPercentToTest says"}},
        {{"run", "cache", "--destructive", "--device", "sim:32767s"},
         host::exitCodeFor(quel5::TestResult::CANNOTRUN),
         {"the cache test works on the last 32768 sectors of its range, and sim:32767s has only "
          "32767; it was not started"}},
        // Tests that write need their flag.
        {{"run", "pattern", "--device", "sim:1MiB"}, 64, {"add --destructive"}},
        {{"run", "cache", "--device", "sim:32MiB"}, 64, {"cache test overwrites sectors"}},
        {{"tests", "--destructive"}, 64, {"belongs to the run command"}},
        // The read-write test's own options.
        {{"run", "read-write", "--device", "/dev/sr9"},
         64,
         {"overwrites the disc in /dev/sr9; add --destructive"}},
        {{"run", "read-write", "--set", "MaxErrors=3"}, 64, {"has no library parameters"}},
        {{"run", "read-write", "--map", "scan.svg"}, 64, {"--map FILE draws read times"}},
        {{"run", "read-write", "--device", "emu:dvd+rw,fault=write"}, 64, {"expected OP:CODE"}},
        {{"run", "read-write", "--sectors", "-1"}, 64, {"--sectors -1: expected"}},
        {{"run", "surface-scan", "--blank-only"},
         64,
         {"--blank-only belongs to the read-write test"}},
        {{"tests", "--sectors", "5"}, 64, {"--sectors belongs to the run command"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.says.front());
        const RunOutput run = runDrivediag(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode);
        for (const std::string& part : c.says)
            EXPECT_NE(run.err.find(part), std::string::npos) << run.err;
        EXPECT_EQ(run.err.find("drivediag:"), run.err.rfind("drivediag:"))
            << "one reason: " << run.err;
        EXPECT_EQ(run.out, "") << "nothing may run";
    }
    // What the checks let through still runs: the other amount may stand in.
    EXPECT_EQ(runDrivediag(linearSeek({"NumberOfSeeks=", "SectorPercentToTest=10"})).exitCode, 0);
}

TEST_F(DrivediagEndToEndTest, TestsCommandShowsEveryTestWithItsDefaults) {
    const RunOutput text = runDrivediag({"tests"});
    EXPECT_EQ(text.exitCode, host::exitCodeFor(quel5::TestResult::PASS));
    EXPECT_EQ(text.lines.at(0), "linear-seek");
    EXPECT_EQ(text.lines.at(2), "    defaults: MaxErrors=10 NumberOfSeeks=1000");
    EXPECT_NE(text.lineWith({"defaults: MaxErrors=10 NumberOfSeeks=1000 EndRange=MAX-1"}), "")
        << "random-seek's";
    EXPECT_NE(text.lineWith({"defaults:", "--sectors=8192"}), "") << "the read-write test's";
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

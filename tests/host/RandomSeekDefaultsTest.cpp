// drivediag's default range for random-seek: the library draws the end sector too, so the host's
// default must end the range on the last sector, or a healthy drive fails now and then. Seeds
// are fixed so that every run draws the same sectors; time is virtual.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "libDrive/RandomSeekDraw.h"
#include "support/ScopedVirtualClock.h"

namespace {

using hosttest::runDrivediag;
using hosttest::RunOutput;
using Args = std::vector<std::string>;

uint32_t nextSeed = 0;
uint32_t countingSeeds() { return nextSeed++; }

class RandomSeekDefaultsTest : public ::testing::Test {
protected:
    void SetUp() override {
        nextSeed = 1;
        kivrlibdrive::SetSeekSeedSource(countingSeeds);
    }
    void TearDown() override { kivrlibdrive::SetSeekSeedSource(nullptr); }

    testsupport::ScopedVirtualClock clock_;
};

TEST_F(RandomSeekDefaultsTest, HealthyDrivesPassEveryRunWithTheDefaults) {
    // Small drives make a draw of the sector one past the last likely in every run: 1 in 17
    // seeks on 16 sectors, about one run in two on 1 MiB with 1000 seeks.
    const struct {
        std::string device;
        int runs;
    } cases[] = {
        {"sim:16s", 20},
        {"sim:1MiB", 30},
        {"sim:3s", 20},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.device);
        for (int run = 0; run < c.runs; ++run) {
            const RunOutput output = runDrivediag({"run", "random-seek", "--device", c.device});
            ASSERT_EQ(output.exitCode, host::exitCodeFor(quel5::TestResult::PASS))
                << "run " << run << " (seeds from " << nextSeed << "):\n"
                << output.out;
        }
    }
}

TEST_F(RandomSeekDefaultsTest, AnExplicitEndRangeIsUsedAsGiven) {
    const struct {
        std::string name;
        Args sets;
        std::string startLine;
        int exitCode;
    } cases[] = {
        {"defaults",
         {"--device", "sim:16s"},
         "Running random-seek on sim:16s with MaxErrors=10 NumberOfSeeks=1000 EndRange=MAX-1",
         0},
        // MAX as given: the sector one past the last is drawn and reads as failed.
        {"end at MAX",
         {"--device", "sim:16s", "--set", "EndRange=MAX"},
         "Running random-seek on sim:16s with MaxErrors=10 NumberOfSeeks=1000 EndRange=MAX",
         1},
        {"end unset: the library's own end",
         {"--device", "sim:16s", "--set", "EndRange="},
         "Running random-seek on sim:16s with MaxErrors=10 NumberOfSeeks=1000",
         1},
        // The sectors from 9 on are bad: a run that honoured the end 8 never reads them.
        {"an end below bad sectors",
         {"--device", "sim:16s,bad=9+7", "--set", "EndRange=8"},
         "Running random-seek on sim:16s,bad=9+7 with MaxErrors=10 NumberOfSeeks=1000 "
         "EndRange=8",
         0},
        {"the start moved, the end kept",
         {"--device", "sim:16s", "--set", "StartRange=12"},
         "Running random-seek on sim:16s with MaxErrors=10 NumberOfSeeks=1000 EndRange=MAX-1 "
         "StartRange=12",
         0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Args args{"run", "random-seek"};
        args.insert(args.end(), c.sets.begin(), c.sets.end());
        const RunOutput output = runDrivediag(args);
        ASSERT_FALSE(output.lines.empty()) << output.err;
        EXPECT_EQ(output.lines.front(), c.startLine);
        EXPECT_EQ(output.exitCode, c.exitCode) << output.out;
    }
}

}  // namespace

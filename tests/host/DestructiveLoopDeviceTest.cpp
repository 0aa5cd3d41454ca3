// The destructive tests on a real block device: a loop device over an image of random data must
// hold exactly its old bytes after a whole run with PreserveData and after a run stopped in the
// middle. Needs root and losetup; skipped elsewhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "cli/StopRequest.h"
#include "support/LoopDevice.h"
#include "support/TempFile.h"

namespace {

using Bytes = std::vector<uint8_t>;
using quel5::TestResult;
using Args = std::vector<std::string>;

constexpr std::size_t kImageBytes = 32 * 1024 * 1024;  // the cache test needs 16 MiB at least
constexpr std::size_t kSectorBytes = 512;

// The sectors in which `after` differs from `before`.
std::vector<std::size_t> changedSectors(const Bytes& before, const Bytes& after) {
    std::vector<std::size_t> changed;
    for (std::size_t offset = 0; offset + kSectorBytes <= before.size(); offset += kSectorBytes) {
        if (offset + kSectorBytes > after.size() ||
            std::memcmp(before.data() + offset, after.data() + offset, kSectorBytes) != 0)
            changed.push_back(offset / kSectorBytes);
    }
    return changed;
}

std::string describe(const std::vector<std::size_t>& sectors) {
    std::ostringstream text;
    text << sectors.size() << " changed sectors";
    for (std::size_t i = 0; i < sectors.size() && i < 8; ++i)
        text << (i ? ", " : ": ") << sectors[i];
    return text.str();
}

// Requests a stop, as Ctrl-C does, once the device has completed `writes` more write requests:
// a point certainly inside the test's writing, whatever the machine's speed.
class StopAfterWrites {
public:
    StopAfterWrites(const testsupport::LoopImage& device, unsigned long long writes)
        : watcher_([this, &device, target = device.writesDone() + writes] {
              while (!done_.load()) {
                  if (device.writesDone() >= target) {
                      host::requestStop();
                      return;
                  }
                  std::this_thread::sleep_for(std::chrono::microseconds(200));
              }
          }) {}
    ~StopAfterWrites() {
        done_.store(true);
        watcher_.join();
        host::clearStopRequest();
    }
    StopAfterWrites(const StopAfterWrites&) = delete;
    StopAfterWrites& operator=(const StopAfterWrites&) = delete;

private:
    std::atomic<bool> done_{false};
    std::thread watcher_;
};

Args destructiveRun(const std::string& test, const std::string& device, const Args& sets) {
    Args args{"run", test, "--destructive", "--device", device, "--json"};
    for (const std::string& set : sets) {
        args.push_back("--set");
        args.push_back(set);
    }
    return args;
}

class DestructiveLoopDeviceTest : public testing::Test {
protected:
    void SetUp() override {
        if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
            GTEST_SKIP() << why;
        ASSERT_FALSE(loop_.path().empty());
    }
    testsupport::LoopImage loop_{"destructive", kImageBytes, testsupport::ImageFill::RandomWords};
};

TEST_F(DestructiveLoopDeviceTest, WholeRunsGiveEveryByteBack) {
    struct Case {
        std::string test;
        Args sets;
        unsigned long long leastWrites;  // tested sectors or blocks, written and restored
    };
    const Case cases[] = {
        {"pattern", {"PreserveData=true", "EndRange=MIN+4MB", "NumberOfSeeks=200"}, 200 * 19},
        {"pattern", {"PreserveData=true", "StartRange=MAX-1MB", "NumberOfSeeks=64"}, 64 * 19},
        {"cache", {"PreserveData=true"}, 5 * 128 * 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.test + " " + c.sets.back());
        const Bytes before = loop_.image().bytes();
        const unsigned long long writesBefore = loop_.writesDone();
        const hosttest::RunOutput run =
            hosttest::runDrivediag(destructiveRun(c.test, loop_.path(), c.sets));
        EXPECT_EQ(run.exitCode, host::exitCodeFor(TestResult::PASS)) << run.lines.back();
        EXPECT_GE(loop_.writesDone() - writesBefore, c.leastWrites)
            << "fewer writes than a whole run makes";
        const std::vector<std::size_t> changed = changedSectors(before, loop_.image().bytes());
        EXPECT_TRUE(changed.empty()) << describe(changed);
    }
}

TEST_F(DestructiveLoopDeviceTest, StoppedRunsGiveEveryByteBack) {
    struct Case {
        std::string test;
        Args sets;
        unsigned long long stopAfterWrites;
    };
    const Case cases[] = {
        // A stop a few writes in and one deep into the run, both landing between a sector's
        // patterns most of the time: the sector must come back from its saved copy.
        {"pattern", {"PreserveData=true", "NumberOfSeeks=20000"}, 40 * 19 + 7},
        {"pattern", {"PreserveData=true", "NumberOfSeeks=20000"}, 3},
        // MaxErrors high so that failing blocks cannot end the run before the stop does.
        {"cache", {"PreserveData=true", "MaxErrors=100000"}, 200 + 1},
        {"cache", {"PreserveData=true", "MaxErrors=100000"}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.test + " stopped after " + std::to_string(c.stopAfterWrites) + " writes");
        const Bytes before = loop_.image().bytes();
        hosttest::RunOutput run;
        {
            const StopAfterWrites stop(loop_, c.stopAfterWrites);
            run = hosttest::runDrivediag(destructiveRun(c.test, loop_.path(), c.sets));
        }
        EXPECT_EQ(run.exitCode, host::exitCodeFor(TestResult::USERABORTED)) << run.lines.back();
        EXPECT_EQ(run.countLinesWith("\"type\":\"percent\",\"percent\":100}"), 0u)
            << "the run ended before the stop";
        const std::vector<std::size_t> changed = changedSectors(before, loop_.image().bytes());
        EXPECT_TRUE(changed.empty()) << describe(changed);
    }
}

// Without PreserveData the pattern test leaves its sectors zeroed: proof that the comparisons
// above see what the tests write, and that sector 0 is spared even then.
TEST_F(DestructiveLoopDeviceTest, WithoutPreserveDataTestedSectorsAreLeftZeroed) {
    const Bytes before = loop_.image().bytes();
    const hosttest::RunOutput run = hosttest::runDrivediag(destructiveRun(
        "pattern", loop_.path(), {"PreserveData=false", "EndRange=MIN+1MB", "NumberOfSeeks=16"}));
    ASSERT_EQ(run.exitCode, host::exitCodeFor(TestResult::PASS)) << run.out;
    const Bytes after = loop_.image().bytes();
    const std::vector<std::size_t> changed = changedSectors(before, after);
    EXPECT_FALSE(changed.empty());
    EXPECT_LE(changed.size(), 16u) << describe(changed);
    for (std::size_t sector : changed) {
        SCOPED_TRACE(sector);
        EXPECT_NE(sector, 0u);
        EXPECT_LT(sector, 2048u) << "written outside the range";
        const auto first = after.begin() + static_cast<std::ptrdiff_t>(sector * kSectorBytes);
        EXPECT_TRUE(std::all_of(first, first + kSectorBytes, [](char byte) { return byte == 0; }));
    }
}

}  // namespace

// drivediag on a real block device: a loop device over a temporary image. Needs root and
// losetup; skipped elsewhere.
#include <gtest/gtest.h>

#include <string>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "support/LoopDevice.h"
#include "support/TempFile.h"

namespace {

using quel5::TestResult;

TEST(LoopDeviceTest, LinearSeekOnALoopDevicePasses) {
    if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
        GTEST_SKIP() << why;
    const testsupport::TempImage image("loop", 4 * 1024 * 1024);
    const testsupport::LoopDevice loop(image.text());
    ASSERT_FALSE(loop.path().empty());

    const hosttest::RunOutput run = hosttest::runDrivediag(
        {"run", "linear-seek", "--device", loop.path(), "--set", "NumberOfSeeks=256"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(TestResult::PASS)) << run.out << run.err;
    EXPECT_EQ(run.lines.front(),
              "Running linear-seek on " + loop.path() + " with MaxErrors=10 NumberOfSeeks=256");
    EXPECT_EQ(run.result(), "PASS (exit code 0)");

    const hosttest::RunOutput past = hosttest::runDrivediag(
        {"run", "linear-seek", "--device", loop.path(), "--set", "StartRange=MIN+5MB"});
    EXPECT_EQ(past.exitCode, host::exitCodeFor(TestResult::BADPARAMS)) << past.out << past.err;
}

}  // namespace

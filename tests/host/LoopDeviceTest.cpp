// drivediag on what Linux gives it: a loop device over a temporary image (needs root and
// losetup; skipped elsewhere) and a file whose name is bytes that are not UTF-8.
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "os/Clock.h"
#include "support/LoopDevice.h"
#include "support/TempFile.h"

namespace {

using quel5::TestResult;

// The real clock, running 20 ms ahead at every reading: a run on a fast loop device then takes
// long enough for progress lines and an estimate of the time left, whatever the machine.
class HurriedClock : public os::Clock {
public:
    HurriedClock() : real_(os::clock()) { os::installClock(this); }
    ~HurriedClock() override { os::installClock(nullptr); }
    HurriedClock(const HurriedClock&) = delete;
    HurriedClock& operator=(const HurriedClock&) = delete;

    uint64_t nowMilliseconds() override { return real_.nowMilliseconds() + ahead(); }
    uint64_t monotonicMilliseconds() override { return real_.monotonicMilliseconds() + ahead(); }
    void sleep(uint32_t milliseconds) override { real_.sleep(milliseconds); }
    bool wait(os::Waitable& object, uint32_t timeoutMs) override {
        return real_.wait(object, timeoutMs);
    }

private:
    uint64_t ahead() { return 20 * ++readings_; }

    os::Clock& real_;
    std::atomic<uint64_t> readings_{0};
};

TEST(LoopDeviceTest, LinearSeekOnALoopDevicePasses) {
    if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
        GTEST_SKIP() << why;
    const testsupport::TempImage image("loop", 4 * 1024 * 1024);
    const testsupport::LoopDevice loop(image.text());
    ASSERT_FALSE(loop.path().empty());

    // A block device gives no estimate of its own: drivediag's comes from the pace so far.
    {
        const HurriedClock hurried;
        const hosttest::RunOutput timed = hosttest::runDrivediag(
            {"run", "linear-seek", "--device", loop.path(), "--set", "NumberOfSeeks=4096"});
        EXPECT_EQ(timed.exitCode, host::exitCodeFor(TestResult::PASS)) << timed.err;
        EXPECT_NE(timed.lineWith({"%  Reading sector ", " left"}), "") << timed.out;
        EXPECT_EQ(timed.lineWith({"Device:  " + loop.path() + " (block device)"}),
                  timed.lines.at(1));
        EXPECT_NE(timed.lineWith({"  Direct I/O: on"}), "") << timed.out;
    }

    const hosttest::RunOutput past = hosttest::runDrivediag(
        {"run", "linear-seek", "--device", loop.path(), "--set", "StartRange=MIN+5MB"});
    EXPECT_EQ(past.exitCode, host::exitCodeFor(TestResult::BADPARAMS)) << past.out << past.err;
}

TEST(LoopDeviceTest, AnImageWhoseNameIsNotUtf8Opens) {
    const testsupport::TempImage image("name-\xFF\xC3(", 64 * 1024);
    ASSERT_NE(image.text().find("\xFF\xC3("), std::string::npos);
    const hosttest::RunOutput run = hosttest::runDrivediag(
        {"run", "linear-seek", "--device", image.text(), "--set", "NumberOfSeeks=16"});
    EXPECT_EQ(run.exitCode, host::exitCodeFor(TestResult::PASS)) << run.out << run.err;
    EXPECT_EQ(run.result(), "PASS (exit code 0)");
}

}  // namespace

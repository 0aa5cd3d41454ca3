// drivediag on a real block device: a loop device over a temporary image. Needs root and
// losetup; skipped elsewhere.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "DrivediagRun.h"

namespace {

// The first line a shell command prints, or "" when it fails.
std::string firstLineOf(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return "";
    char buffer[256] = {};
    std::string line = std::fgets(buffer, sizeof buffer, pipe) ? buffer : "";
    if (pclose(pipe) != 0) return "";
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
    return line;
}

// A loop device attached to an image for the length of a test.
class LoopDevice {
public:
    explicit LoopDevice(const std::string& image)
        : path_(firstLineOf("losetup --find --show " + image + " 2>/dev/null")) {}
    ~LoopDevice() {
        if (!path_.empty()) std::system(("losetup -d " + path_ + " 2>/dev/null").c_str());
    }
    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

TEST(LoopDeviceTest, LinearSeekOnALoopDevicePasses) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to attach a loop device";
    const hosttest::TempImage image(4 * 1024 * 1024);
    const LoopDevice loop(image.path());
    if (loop.path().empty()) GTEST_SKIP() << "no loop device could be attached";

    const hosttest::RunOutput run = hosttest::runDrivediag(
        {"run", "linear-seek", "--device", loop.path(), "--set", "NumberOfSeeks=256"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_EQ(run.lines.front(),
              "Running linear-seek on " + loop.path() + " with MaxErrors=10 NumberOfSeeks=256");
    EXPECT_EQ(run.lines.back(), "Result: PASS (exit code 0)");

    const hosttest::RunOutput past = hosttest::runDrivediag(
        {"run", "linear-seek", "--device", loop.path(), "--set", "StartRange=MIN+5MB"});
    EXPECT_EQ(past.exitCode, 3) << past.out << past.err;
}

}  // namespace

// Destructive runs that must not write at all: on an image file whose loop device carries a
// mounted filesystem (the file's data sectors aimed at directly), on that loop device itself,
// and on a read-only loop device. Needs root, losetup, mkfs.ext4 and mount; skipped elsewhere.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "support/LoopDevice.h"
#include "support/TempFile.h"

namespace {

namespace fs = std::filesystem;
using Args = std::vector<std::string>;
using Bytes = std::vector<char>;
using quel5::TestResult;
using testsupport::ImageFill;
using testsupport::succeeds;

constexpr std::size_t kImageBytes = 64 * 1024 * 1024;
constexpr std::size_t kSectorBytes = 512;
constexpr std::size_t kPayloadBytes = 64 * 1024;
constexpr uint64_t kTestedSectors = 8;

Bytes readAt(const std::string& path, uint64_t offset, std::size_t bytes) {
    Bytes data(bytes);
    std::ifstream in(path, std::ios::binary);
    in.seekg(static_cast<std::streamoff>(offset));
    in.read(data.data(), static_cast<std::streamsize>(bytes));
    data.resize(static_cast<std::size_t>(in.gcount()));
    return data;
}

// The first sector of `path`'s data on the device below its filesystem, once it is written out.
std::optional<uint64_t> firstDataSector(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    // The map with room for one extent after it.
    alignas(fiemap) unsigned char request[sizeof(fiemap) + sizeof(fiemap_extent)] = {};
    auto* map = reinterpret_cast<fiemap*>(request);
    map->fm_length = FIEMAP_MAX_OFFSET;
    map->fm_flags = FIEMAP_FLAG_SYNC;
    map->fm_extent_count = 1;
    const bool mapped = ioctl(fd, FS_IOC_FIEMAP, map) == 0 && map->fm_mapped_extents == 1;
    ::close(fd);
    if (!mapped) return std::nullopt;
    return map->fm_extents[0].fe_physical / kSectorBytes;
}

// An image file (random, or an ext4 filesystem) with a loop device over it, both removed at the
// end; a mount of the filesystem when mount() is called.
class LoopImage {
public:
    LoopImage(const std::string& losetupOptions, bool withFilesystem)
        : image_("refusal", kImageBytes,
                 withFilesystem ? ImageFill::Zeros : ImageFill::RandomWords) {
        // No lazy initialisation: the mounted filesystem then writes nothing of its own.
        if (withFilesystem &&
            !succeeds("mkfs.ext4 -q -F -E lazy_itable_init=0,lazy_journal_init=0 " + image_.text()))
            return;
        loop_.emplace(image_.text(), losetupOptions);
    }

    bool mount() {
        mounted_.emplace(loop());
        return mounted_->mounted();
    }
    bool unmount() { return !mounted_ || mounted_->unmount(); }

    const std::string& image() const { return image_.text(); }
    std::string loop() const { return loop_ ? loop_->path() : ""; }
    std::string mountPoint() const { return mounted_ ? mounted_->directory() : ""; }
    unsigned long long writesDone() const { return loop_->writesDone(); }

private:
    testsupport::TempImage image_;
    std::optional<testsupport::LoopDevice> loop_;
    std::optional<testsupport::MountedFilesystem> mounted_;
};

Args patternRun(const std::string& device, uint64_t start) {
    const std::string first = "StartRange=" + std::to_string(start);
    const std::string end = "EndRange=" + std::to_string(start + kTestedSectors);
    const std::string seeks = "NumberOfSeeks=" + std::to_string(kTestedSectors);
    return {"run",   "pattern", "--destructive", "--device", device,  "--set", "PreserveData=false",
            "--set", first,     "--set",         end,        "--set", seeks};
}

class WriteRefusalLoopTest : public testing::Test {
protected:
    void SetUp() override {
        if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
            GTEST_SKIP() << why;
    }
};

TEST_F(WriteRefusalLoopTest, ImageOfAMountedLoopDeviceIsRefusedAndItsFileKept) {
    if (!succeeds("command -v mkfs.ext4")) GTEST_SKIP() << "no mkfs.ext4";
    LoopImage fsImage("", true);
    if (fsImage.loop().empty()) GTEST_SKIP() << "no loop device could be attached";
    if (!fsImage.mount()) GTEST_SKIP() << "the filesystem could not be mounted";

    const std::string payloadPath = fsImage.mountPoint() + "/payload";
    Bytes payload(kPayloadBytes);
    std::mt19937 random(7);
    std::generate(payload.begin(), payload.end(), [&] { return static_cast<char>(random()); });
    std::ofstream(payloadPath, std::ios::binary)
        .write(payload.data(), static_cast<std::streamsize>(payload.size()));
    const std::optional<uint64_t> sector = firstDataSector(payloadPath);
    ASSERT_TRUE(sector) << "the payload's place on the device is unknown";
    const uint64_t offset = *sector * kSectorBytes;
    ASSERT_EQ(readAt(fsImage.image(), offset, kPayloadBytes), payload)
        << "the image must hold the payload where the filesystem says";

    const struct {
        std::string device;
        std::string says;
    } cases[] = {
        {fsImage.image(), fsImage.image() + " is the backing file of " + fsImage.loop() +
                              ", which is mounted on " + fsImage.mountPoint()},
        {fsImage.loop(), fsImage.loop() + " is mounted on " + fsImage.mountPoint()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.device);
        const hosttest::RunOutput run = hosttest::runDrivediag(patternRun(c.device, *sector));
        EXPECT_EQ(run.exitCode, host::exitCodeFor(TestResult::DEVICEBUSY)) << run.out << run.err;
        EXPECT_NE(run.lineWith({"ERROR: The device is in use"}), "") << run.out;
        EXPECT_NE(run.err.find("drivediag: the device was not locked: " + c.says),
                  std::string::npos)
            << run.err;
        EXPECT_EQ(readAt(fsImage.image(), offset, kPayloadBytes), payload);
    }

    // Control: with the filesystem gone the same run writes those very sectors, so the refusal
    // above is what kept them. The loop device stays attached, unused: that alone is no refusal.
    ASSERT_TRUE(fsImage.unmount());
    const hosttest::RunOutput run = hosttest::runDrivediag(patternRun(fsImage.image(), *sector));
    EXPECT_EQ(run.exitCode, host::exitCodeFor(TestResult::PASS)) << run.out << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(readAt(fsImage.image(), offset, kTestedSectors * kSectorBytes),
              Bytes(kTestedSectors * kSectorBytes, 0))
        << "the tested sectors are left zeroed";
}

TEST_F(WriteRefusalLoopTest, ReadOnlyLoopDeviceIsRefusedBeforeAnyWrite) {
    LoopImage readOnly("--read-only", false);
    if (readOnly.loop().empty()) GTEST_SKIP() << "no loop device could be attached";
    const Bytes before = readAt(readOnly.image(), 0, kImageBytes);
    const unsigned long long writesBefore = readOnly.writesDone();
    const Args cases[] = {
        {"run", "pattern", "--destructive", "--device", readOnly.loop(), "--set",
         "PreserveData=false"},
        {"run", "pattern", "--destructive", "--device", readOnly.loop(), "--json"},
        {"run", "cache", "--destructive", "--device", readOnly.loop()},
    };
    for (const Args& args : cases) {
        SCOPED_TRACE(testing::PrintToString(args));
        const hosttest::RunOutput run = hosttest::runDrivediag(args);
        EXPECT_EQ(run.exitCode, host::kExitReadOnly) << run.out << run.err;
        EXPECT_NE(
            run.err.find("drivediag: " + readOnly.loop() + " is read-only (write-protected); the " +
                         args[1] + " test writes to it and was not started"),
            std::string::npos)
            << run.err;
        EXPECT_EQ(run.out, "") << "the test must not start";
    }
    EXPECT_EQ(readOnly.writesDone(), writesBefore);
    EXPECT_EQ(readAt(readOnly.image(), 0, kImageBytes), before);

    // Reading tests still run on it.
    const hosttest::RunOutput scan = hosttest::runDrivediag(
        {"run", "linear-seek", "--device", readOnly.loop(), "--set", "NumberOfSeeks=50"});
    EXPECT_EQ(scan.exitCode, host::exitCodeFor(TestResult::PASS)) << scan.out << scan.err;
}

}  // namespace

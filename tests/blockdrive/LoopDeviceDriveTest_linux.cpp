// The block-device drive over real kernel block devices: loop devices over temporary images.
// Needs root and losetup; skips otherwise.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "blockdrive/ImageFile.h"
#include "drives/BlockDeviceDrive.h"
#include "drives/ReadAhead.h"
#include "support/RecordingHost.h"

namespace {

using blockdrivetest::imageBytes;
using blockdrivetest::ImageFile;
using quel5::TestResult;

constexpr uint64_t kImageBytes = 8 * 1024 * 1024;

// The command's standard output without the final newline, or "" when it failed.
std::string run(const std::string& command) {
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen((command + " 2>/dev/null").c_str(), "r"),
                                               pclose);
    if (!pipe) return {};
    std::string out;
    std::array<char, 256> chunk{};
    while (fgets(chunk.data(), chunk.size(), pipe.get()) != nullptr) out += chunk.data();
    if (pclose(pipe.release()) != 0) return {};
    while (!out.empty() && out.back() == '\n') out.pop_back();
    return out;
}

// A loop device over an image, detached at the end of the test.
class LoopDevice {
public:
    LoopDevice(const ImageFile& image, const std::string& options)
        : path_(run("losetup --find --show " + options + " " + image.pathText())) {}
    ~LoopDevice() {
        if (!path_.empty()) run("losetup -d " + path_);
    }
    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

class LoopDeviceDriveTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0 || !std::filesystem::exists("/dev/loop-control") ||
            run("losetup --version").empty()) {
            GTEST_SKIP() << "needs root and losetup";
        }
    }
    testsupport::RecordingHost host_;
    testsupport::ScopedHost installed_{host_};
};

TEST_F(LoopDeviceDriveTest, GeometryAndDataComeFromTheKernelDevice) {
    struct Case {
        const char* options;
        uint32_t bytesPerSector;
        bool writeProtected;
    };
    const Case cases[] = {
        {"--direct-io=on", 512, false},
        {"--direct-io=on --sector-size 4096", 4096, false},
        {"--read-only", 512, true},
    };
    ImageFile image("loop", kImageBytes);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options);
        LoopDevice loop(image, c.options);
        ASSERT_FALSE(loop.path().empty()) << "losetup " << c.options;
        quel5::DiagDevice device(QuelString(loop.path().c_str()));
        // The kernel's sector size wins over what the device description says.
        device.setProperty(L"BytesPerSector", quel5::Value(2048u));
        host::BlockDeviceDrive drive(device);
        ASSERT_EQ(drive.OpenDevice(), TestResult::PASS) << drive.lastError();
        EXPECT_EQ(drive.GetBytesPerSector(), c.bytesPerSector);
        EXPECT_EQ(drive.GetTotalSectors(), kImageBytes / c.bytesPerSector);
        EXPECT_TRUE(drive.usesDirectIo());
        EXPECT_EQ(drive.IsWriteProtected(), c.writeProtected);
        const uint64_t last = drive.GetTotalSectors() - 1;
        for (uint64_t sector : {uint64_t{0}, uint64_t{3}, last}) {
            // One byte in: the drive must bounce through an aligned buffer.
            std::vector<uint8_t> block(c.bytesPerSector + 1);
            ASSERT_EQ(drive.ReadSectors(sector, 1, block.data() + 1, c.bytesPerSector),
                      TestResult::PASS)
                << drive.lastError();
            EXPECT_EQ(std::vector<uint8_t>(block.begin() + 1, block.end()),
                      imageBytes(sector * c.bytesPerSector, c.bytesPerSector))
                << "sector " << sector;
        }
        std::vector<uint8_t> block(c.bytesPerSector);
        EXPECT_EQ(drive.ReadSectors(last + 1, 1, block.data(), c.bytesPerSector), TestResult::FAIL);
    }
}

TEST_F(LoopDeviceDriveTest, WriteUnderLockReachesTheBackingImage) {
    ImageFile image("loopwrite", kImageBytes);
    LoopDevice loop(image, "--direct-io=on");
    ASSERT_FALSE(loop.path().empty());
    quel5::DiagDevice device(QuelString(loop.path().c_str()));
    host::BlockDeviceDrive drive(device);
    ASSERT_EQ(drive.OpenDevice(), TestResult::PASS) << drive.lastError();
    const std::vector<uint8_t> data(2 * 512, 0xC3);
    EXPECT_EQ(drive.WriteSectors(9, 2, data.data(), 1024), TestResult::DEVICEBUSY);
    ASSERT_EQ(drive.lock(), TestResult::PASS);
    EXPECT_EQ(drive.WriteSectors(9, 2, data.data(), 1024), TestResult::PASS) << drive.lastError();
    EXPECT_EQ(drive.FlushCache(), TestResult::PASS);
    drive.unLock();
    std::vector<uint8_t> expected = imageBytes(0, kImageBytes);
    std::copy(data.begin(), data.end(), expected.begin() + 9 * 512);
    EXPECT_EQ(image.contents(), expected);
}

TEST_F(LoopDeviceDriveTest, SectorsLostWhenTheDeviceShrinksFailWithoutEndingTheTest) {
    ImageFile image("loopshrink", kImageBytes);
    LoopDevice loop(image, "--direct-io=on");
    ASSERT_FALSE(loop.path().empty());
    quel5::DiagDevice device(QuelString(loop.path().c_str()));
    host::BlockDeviceDrive drive(device);
    ASSERT_EQ(drive.OpenDevice(), TestResult::PASS) << drive.lastError();
    std::filesystem::resize_file(image.path(), kImageBytes / 2);
    ASSERT_EQ(run("losetup -c " + loop.path() + " && echo ok"), "ok");
    struct Case {
        uint64_t sector;
        TestResult expected;
    };
    const Case cases[] = {
        {0, TestResult::PASS},
        {kImageBytes / 2 / 512 - 1, TestResult::PASS},
        {kImageBytes / 2 / 512, TestResult::FAIL},
        {kImageBytes / 512 - 1, TestResult::FAIL},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.sector);
        std::vector<uint8_t> block(512);
        EXPECT_EQ(drive.ReadSectors(c.sector, 1, block.data(), 512), c.expected)
            << drive.lastError();
    }
    EXPECT_EQ(drive.VerifySectors(0, 2048), TestResult::PASS);
    EXPECT_EQ(drive.VerifySectors(8000, 400), TestResult::FAIL);
}

// Reads `count` sectors of `bytesPerSector` every `count` sectors from `start` to `end`, the way
// the surface scan does; each block's result, and whether a passed block held the image's bytes.
struct SweptBlock {
    uint64_t sector;
    TestResult result;
    bool dataRight;
};
std::vector<SweptBlock> sweep(host::BlockDeviceDrive& drive, uint64_t start, uint64_t end,
                              uint32_t count, uint32_t bytesPerSector) {
    std::vector<SweptBlock> blocks;
    std::vector<uint8_t> buffer(size_t{count} * bytesPerSector);
    for (uint64_t sector = start; sector < end; sector += count) {
        const TestResult result =
            drive.ReadSectors(sector, count, buffer.data(), static_cast<unsigned>(buffer.size()));
        blocks.push_back(
            {sector, result, buffer == imageBytes(sector * bytesPerSector, buffer.size())});
    }
    return blocks;
}

TEST_F(LoopDeviceDriveTest, SweepsReadAheadTheKernelDevicesData) {
    struct Case {
        const char* options;
        uint32_t bytesPerSector;
        uint32_t count;  // sectors per block
    };
    const Case cases[] = {
        {"--direct-io=on", 512, 2048},
        {"--direct-io=on", 512, 24},
        {"--direct-io=on --sector-size 4096", 4096, 256},
        {"--direct-io=off", 512, 128},
    };
    ImageFile image("loopsweep", kImageBytes);
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.options << ", blocks of " << c.count);
        LoopDevice loop(image, c.options);
        ASSERT_FALSE(loop.path().empty()) << "losetup " << c.options;
        quel5::DiagDevice device(QuelString(loop.path().c_str()));
        host::BlockDeviceDrive drive(device);
        ASSERT_EQ(drive.OpenDevice(), TestResult::PASS) << drive.lastError();
        const uint64_t total = drive.GetTotalSectors();
        const std::vector<SweptBlock> blocks =
            sweep(drive, 0, total / c.count * c.count, c.count, c.bytesPerSector);
        for (const SweptBlock& block : blocks) {
            EXPECT_EQ(block.result, TestResult::PASS) << "sector " << block.sector;
            EXPECT_TRUE(block.dataRight) << "sector " << block.sector;
        }
        const host::ReadAheadCounters counters = drive.readAheadCounters();
        EXPECT_EQ(counters.served, blocks.size() - 2);
        EXPECT_EQ(counters.discarded, 0u);
    }
}

TEST_F(LoopDeviceDriveTest, DeviceShrunkDuringASweepFailsTheLostBlocksInOrder) {
    struct Case {
        const char* name;
        uint64_t newBytes;
    };
    // The sweep has read 4 blocks of 64 KiB when the device shrinks: read-ahead then reaches
    // at most 12 blocks in, short of every new end below.
    const Case cases[] = {
        {"to half", kImageBytes / 2},
        {"within a block", kImageBytes / 2 + 5 * 512},
        {"to a little over 1 MiB", 1024 * 1024 + 512},
        {"by one sector", kImageBytes - 512},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ImageFile image("loopcut", kImageBytes);
        LoopDevice loop(image, "--direct-io=on");
        ASSERT_FALSE(loop.path().empty());
        quel5::DiagDevice device(QuelString(loop.path().c_str()));
        host::BlockDeviceDrive drive(device);
        ASSERT_EQ(drive.OpenDevice(), TestResult::PASS) << drive.lastError();
        constexpr uint32_t kCount = 128;
        std::vector<SweptBlock> blocks = sweep(drive, 0, 4 * kCount, kCount, 512);
        std::filesystem::resize_file(image.path(), c.newBytes);
        ASSERT_EQ(run("losetup -c " + loop.path() + " && echo ok"), "ok");
        const std::vector<SweptBlock> rest =
            sweep(drive, 4 * kCount, drive.GetTotalSectors(), kCount, 512);
        blocks.insert(blocks.end(), rest.begin(), rest.end());
        ASSERT_EQ(blocks.size(), kImageBytes / (kCount * 512));
        for (const SweptBlock& block : blocks) {
            const bool kept = (block.sector + kCount) * 512 <= c.newBytes;
            EXPECT_EQ(block.result, kept ? TestResult::PASS : TestResult::FAIL)
                << "sector " << block.sector << ": " << drive.lastError();
            if (kept) {
                EXPECT_TRUE(block.dataRight) << "sector " << block.sector;
            }
        }
        EXPECT_GT(drive.readAheadCounters().served, blocks.size() / 2);
    }
}

// Write requests the loop device at `path` has completed (counted across attachments).
unsigned long long writesDoneBy(const std::string& path) {
    const std::string stat =
        run("cat /sys/block/" + std::filesystem::path(path).filename().string() + "/stat");
    unsigned long long readIos = 0, readMerges = 0, readSectors = 0, readTicks = 0, writeIos = 0;
    std::istringstream(stat) >> readIos >> readMerges >> readSectors >> readTicks >> writeIos;
    return writeIos;
}

TEST_F(LoopDeviceDriveTest, ReadOnlyDeviceRefusesTheLockBeforeAnyWrite) {
    ImageFile image("loopro", kImageBytes);
    LoopDevice loop(image, "--read-only");
    ASSERT_FALSE(loop.path().empty());
    quel5::DiagDevice device(QuelString(loop.path().c_str()));
    host::BlockDeviceDrive drive(device);
    ASSERT_EQ(drive.OpenDevice(), TestResult::PASS) << drive.lastError();
    ASSERT_TRUE(drive.IsWriteProtected());
    const unsigned long long writesBefore = writesDoneBy(loop.path());

    EXPECT_EQ(drive.lock(), TestResult::DEVICEBUSY);
    EXPECT_EQ(host_.eventKeys(), std::vector<std::string>{"DeviceBusy"});
    EXPECT_EQ(drive.lockFailure(), loop.path() + " is read-only (write-protected)");
    const std::vector<uint8_t> data(512, 0x3C);
    EXPECT_EQ(drive.WriteSectors(1, 1, data.data(), 512), TestResult::DEVICEBUSY)
        << "a refused lock leaves nothing locked";
    drive.unLock();
    EXPECT_EQ(writesDoneBy(loop.path()), writesBefore);
    EXPECT_EQ(image.contents(), imageBytes(0, kImageBytes));
}

}  // namespace

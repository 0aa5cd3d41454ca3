// The block-device drive over real kernel block devices: loop devices over temporary images.
// Needs root and losetup; skips otherwise.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "blockdrive/BlockDriveTestSupport.h"
#include "drives/ReadAhead.h"
#include "support/LoopDevice.h"
#include "support/RecordingHost.h"
#include "support/TempFile.h"

namespace {

using blockdrivetest::OpenedDrive;
using blockdrivetest::sweep;
using blockdrivetest::SweptBlock;
using quel5::TestResult;
using testsupport::imageBytes;
using testsupport::ImageFill;
using testsupport::LoopDevice;
using testsupport::TempImage;

constexpr uint64_t kImageBytes = 8 * 1024 * 1024;

class LoopDeviceDriveTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (const std::string why = testsupport::loopDevicesUnavailable(); !why.empty())
            GTEST_SKIP() << why;
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
    TempImage image("loop", kImageBytes, ImageFill::OffsetBytes);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options);
        LoopDevice loop(image.text(), c.options);
        ASSERT_FALSE(loop.path().empty()) << "losetup " << c.options;
        // The kernel's sector size wins over what the device description says.
        OpenedDrive drive(loop.path(), 2048);
        EXPECT_EQ(drive->GetBytesPerSector(), c.bytesPerSector);
        EXPECT_EQ(drive->GetTotalSectors(), kImageBytes / c.bytesPerSector);
        EXPECT_TRUE(drive->usesDirectIo());
        EXPECT_EQ(drive->IsWriteProtected(), c.writeProtected);
        const uint64_t last = drive->GetTotalSectors() - 1;
        for (uint64_t sector : {uint64_t{0}, uint64_t{3}, last}) {
            // One byte in: the drive must bounce through an aligned buffer.
            std::vector<uint8_t> block(c.bytesPerSector + 1);
            ASSERT_EQ(drive->ReadSectors(sector, 1, block.data() + 1, c.bytesPerSector),
                      TestResult::PASS)
                << drive->lastError();
            EXPECT_EQ(std::vector<uint8_t>(block.begin() + 1, block.end()),
                      imageBytes(sector * c.bytesPerSector, c.bytesPerSector))
                << "sector " << sector;
        }
        std::vector<uint8_t> block(c.bytesPerSector);
        EXPECT_EQ(drive->ReadSectors(last + 1, 1, block.data(), c.bytesPerSector),
                  TestResult::FAIL);
    }
}

TEST_F(LoopDeviceDriveTest, WriteUnderLockReachesTheBackingImage) {
    TempImage image("loopwrite", kImageBytes, ImageFill::OffsetBytes);
    LoopDevice loop(image.text(), "--direct-io=on");
    ASSERT_FALSE(loop.path().empty());
    OpenedDrive drive(loop.path());
    const std::vector<uint8_t> data(2 * 512, 0xC3);
    EXPECT_EQ(drive->WriteSectors(9, 2, data.data(), 1024), TestResult::DEVICEBUSY);
    ASSERT_EQ(drive->lock(), TestResult::PASS);
    EXPECT_EQ(drive->WriteSectors(9, 2, data.data(), 1024), TestResult::PASS) << drive->lastError();
    EXPECT_EQ(drive->FlushCache(), TestResult::PASS);
    drive->unLock();
    std::vector<uint8_t> expected = imageBytes(0, kImageBytes);
    std::copy(data.begin(), data.end(), expected.begin() + 9 * 512);
    EXPECT_EQ(image.bytes(), expected);
}

TEST_F(LoopDeviceDriveTest, SectorsLostWhenTheDeviceShrinksFailWithoutEndingTheTest) {
    TempImage image("loopshrink", kImageBytes, ImageFill::OffsetBytes);
    LoopDevice loop(image.text(), "--direct-io=on");
    ASSERT_FALSE(loop.path().empty());
    OpenedDrive drive(loop.path());
    std::filesystem::resize_file(image.path(), kImageBytes / 2);
    ASSERT_TRUE(testsupport::succeeds("losetup -c " + loop.path()));
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
        EXPECT_EQ(drive->ReadSectors(c.sector, 1, block.data(), 512), c.expected)
            << drive->lastError();
    }
    EXPECT_EQ(drive->VerifySectors(0, 2048), TestResult::PASS);
    EXPECT_EQ(drive->VerifySectors(8000, 400), TestResult::FAIL);
}

TEST_F(LoopDeviceDriveTest, SweepsReadAheadTheKernelDevicesData) {
    struct Case {
        const char* options;
        uint32_t bytesPerSector;
        uint32_t count;  // sectors per block
    };
    const Case cases[] = {
        {"--direct-io=on", 512, 2048},
        {"--direct-io=on --sector-size 4096", 4096, 256},
        {"--direct-io=off", 512, 128},
    };
    TempImage image("loopsweep", kImageBytes, ImageFill::OffsetBytes);
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.options << ", blocks of " << c.count);
        LoopDevice loop(image.text(), c.options);
        ASSERT_FALSE(loop.path().empty()) << "losetup " << c.options;
        OpenedDrive drive(loop.path());
        const uint64_t total = drive->GetTotalSectors();
        const std::vector<SweptBlock> blocks =
            sweep(*drive, 0, total / c.count * c.count, c.count, c.count, c.bytesPerSector);
        for (const SweptBlock& block : blocks) {
            EXPECT_EQ(block.result, TestResult::PASS) << "sector " << block.sector;
            EXPECT_TRUE(block.dataRight) << "sector " << block.sector;
        }
        const host::ReadAheadCounters counters = drive->readAheadCounters();
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
        {"to a little over 1 MiB", 1024 * 1024 + 512},
        {"by one sector", kImageBytes - 512},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempImage image("loopcut", kImageBytes, ImageFill::OffsetBytes);
        LoopDevice loop(image.text(), "--direct-io=on");
        ASSERT_FALSE(loop.path().empty());
        OpenedDrive drive(loop.path());
        constexpr uint32_t kCount = 128;
        std::vector<SweptBlock> blocks = sweep(*drive, 0, 4 * kCount, kCount, kCount);
        std::filesystem::resize_file(image.path(), c.newBytes);
        ASSERT_TRUE(testsupport::succeeds("losetup -c " + loop.path()));
        const std::vector<SweptBlock> rest =
            sweep(*drive, 4 * kCount, drive->GetTotalSectors(), kCount, kCount);
        blocks.insert(blocks.end(), rest.begin(), rest.end());
        ASSERT_EQ(blocks.size(), kImageBytes / (kCount * 512));
        for (const SweptBlock& block : blocks) {
            const bool kept = (block.sector + kCount) * 512 <= c.newBytes;
            EXPECT_EQ(block.result, kept ? TestResult::PASS : TestResult::FAIL)
                << "sector " << block.sector << ": " << drive->lastError();
            if (kept) {
                EXPECT_TRUE(block.dataRight) << "sector " << block.sector;
            }
        }
        EXPECT_GT(drive->readAheadCounters().served, blocks.size() / 2);
    }
}

}  // namespace

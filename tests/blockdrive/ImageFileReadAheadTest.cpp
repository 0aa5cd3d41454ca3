// The block-device drive reading ahead over image files: sweeps get the right data block after
// block, an image cut short under the drive fails exactly the blocks past its new end and in
// order, and writes under lock are seen by the sweep after them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "blockdrive/BlockDriveTestSupport.h"
#include "support/RecordingHost.h"
#include "support/TempFile.h"

namespace {

using blockdrivetest::OpenedDrive;
using blockdrivetest::sweep;
using blockdrivetest::SweptBlock;
using quel5::TestResult;
using testsupport::imageBytes;
using testsupport::ImageFill;
using testsupport::TempImage;

constexpr uint64_t kMiB = 1024 * 1024;
constexpr uint32_t kSector = 512;

class ImageFileReadAheadTest : public ::testing::Test {
protected:
    testsupport::RecordingHost host_;
    testsupport::ScopedHost installed_{host_};
};

TEST_F(ImageFileReadAheadTest, SweepsReadTheRightDataAheadOfEveryBlock) {
    struct Case {
        const char* name;
        uint64_t imageBytes;
        uint64_t start;
        uint64_t end;  // 0: the end of the image
        uint64_t stride;
        uint32_t count;
        uint64_t unserved;  // blocks read before the stream shows
    };
    const Case cases[] = {
        {"the drive's own read amount, whole image", 12 * kMiB, 0, 0, 2048, 2048, 2},
        {"a last block cut short", 4 * kMiB + 7 * kSector, 0, 0, 64, 64, 2},
        {"a range inside the image", 4 * kMiB, 1000, 5000, 96, 96, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempImage image("sweep", c.imageBytes, ImageFill::OffsetBytes);
        OpenedDrive drive(image.text());
        const uint64_t end = c.end == 0 ? drive->GetTotalSectors() : c.end;
        const std::vector<SweptBlock> reads = sweep(*drive, c.start, end, c.stride, c.count);
        for (const SweptBlock& read : reads) {
            EXPECT_EQ(read.result, TestResult::PASS) << "sector " << read.sector;
            EXPECT_TRUE(read.dataRight) << "sector " << read.sector;
        }
        EXPECT_EQ(drive->readAheadCounters().served, reads.size() - c.unserved);
        drive->CloseDevice();
    }
}

TEST_F(ImageFileReadAheadTest, ImageCutShortFailsTheBlocksPastItsEndInOrder) {
    struct Case {
        const char* name;
        uint64_t newSize;
    };
    const Case cases[] = {
        {"at a block boundary", 40 * 64 * kSector},
        {"within a block", 40 * 64 * kSector + 3 * kSector},
        {"within a sector", 40 * 64 * kSector + 100},
        {"to nothing", 0},
        {"one sector short", 4 * kMiB - kSector},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempImage image("cut", 4 * kMiB, ImageFill::OffsetBytes);
        OpenedDrive drive(image.text());
        std::filesystem::resize_file(image.path(), c.newSize);
        const std::vector<SweptBlock> reads = sweep(*drive, 0, drive->GetTotalSectors(), 64, 64);
        ASSERT_EQ(reads.size(), 128u);
        for (const SweptBlock& read : reads) {
            const bool whole = (read.sector + read.count) * kSector <= c.newSize;
            EXPECT_EQ(read.result, whole ? TestResult::PASS : TestResult::FAIL)
                << "sector " << read.sector;
            if (whole) {
                EXPECT_TRUE(read.dataRight) << "sector " << read.sector;
            }
        }
        EXPECT_GT(drive->readAheadCounters().served, 100u);
        drive->CloseDevice();
    }
}

TEST_F(ImageFileReadAheadTest, WritesUnderLockAreSeenByTheSweepAfterThem) {
    struct Case {
        const char* name;
        uint64_t sector;  // written, 8 sectors of 0xA5, after blocks 0..3 of 64 sectors are read
    };
    const Case cases[] = {
        {"the next block", 4 * 64},
        {"across two blocks", 6 * 64 - 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempImage image("write", 2 * kMiB, ImageFill::OffsetBytes);
        OpenedDrive drive(image.text());
        // Locked first: lock() changes the drive's handle, which starts read-ahead afresh.
        ASSERT_EQ(drive->lock(), TestResult::PASS);
        sweep(*drive, 0, 4 * 64, 64, 64);
        const std::vector<uint8_t> written(8 * kSector, 0xA5);
        ASSERT_EQ(drive->WriteSectors(c.sector, 8, written.data(), 8 * kSector), TestResult::PASS)
            << drive->lastError();
        std::vector<uint8_t> expected = imageBytes(0, 2 * kMiB);
        std::copy(written.begin(), written.end(),
                  expected.begin() + static_cast<std::ptrdiff_t>(c.sector * kSector));
        std::vector<uint8_t> block(64 * kSector);
        for (uint64_t sector = 4 * 64; sector < drive->GetTotalSectors(); sector += 64) {
            ASSERT_EQ(drive->ReadSectors(sector, 64, block.data(), 64 * kSector), TestResult::PASS);
            EXPECT_TRUE(
                std::equal(block.begin(), block.end(),
                           expected.begin() + static_cast<std::ptrdiff_t>(sector * kSector)))
                << "sector " << sector;
        }
        drive->unLock();
        drive->CloseDevice();
    }
}

}  // namespace

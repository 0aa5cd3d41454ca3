// The block-device drive over disk image files: geometry, reads at the right offsets through
// aligned and unaligned buffers, refusals that leave everything untouched, writes only under
// lock, and the device handle's life.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include "blockdrive/BlockDriveTestSupport.h"
#include "support/RecordingHost.h"
#include "support/TempFile.h"

namespace quel5 {
inline void PrintTo(const TestResult& result, std::ostream* out) { *out << result.name(); }
}  // namespace quel5

namespace {

using blockdrivetest::deviceAt;
using blockdrivetest::OpenedDrive;
using quel5::TestResult;
using testsupport::imageBytes;
using testsupport::ImageFill;
using testsupport::TempImage;

constexpr uint64_t kMiB = 1024 * 1024;
constexpr uint8_t kGuard = 0xEE;

// A page-aligned block from which buffers start `misalignment` bytes in, followed by guard
// bytes that a transfer must never touch.
class TestBuffer {
public:
    TestBuffer(size_t bytes, size_t misalignment)
        : size_(bytes),
          misalignment_(misalignment),
          block_(static_cast<uint8_t*>(
              ::operator new (bytes + misalignment + kGuardBytes, std::align_val_t{4096}))) {
        std::memset(block_, kGuard, bytes + misalignment + kGuardBytes);
    }
    ~TestBuffer() { ::operator delete (block_, std::align_val_t{4096}); }
    TestBuffer(const TestBuffer&) = delete;
    TestBuffer& operator=(const TestBuffer&) = delete;

    uint8_t* data() { return block_ + misalignment_; }
    unsigned int size() const { return static_cast<unsigned int>(size_); }
    std::vector<uint8_t> bytes() const {
        return std::vector<uint8_t>(block_ + misalignment_, block_ + misalignment_ + size_);
    }
    // True when nothing around the buffer was written.
    bool guardsIntact() const {
        for (size_t i = 0; i < misalignment_; ++i) {
            if (block_[i] != kGuard) return false;
        }
        for (size_t i = 0; i < kGuardBytes; ++i) {
            if (block_[misalignment_ + size_ + i] != kGuard) return false;
        }
        return true;
    }
    void fill(const std::vector<uint8_t>& bytes) { std::memcpy(data(), bytes.data(), size_); }

private:
    static constexpr size_t kGuardBytes = 64;
    size_t size_;
    size_t misalignment_;
    uint8_t* block_;
};

// Bytes `replacement` put at `offset` into `original`.
std::vector<uint8_t> patched(std::vector<uint8_t> original, uint64_t offset,
                             const std::vector<uint8_t>& replacement) {
    std::copy(replacement.begin(), replacement.end(),
              original.begin() + static_cast<std::ptrdiff_t>(offset));
    return original;
}

class BlockDeviceDriveTest : public ::testing::Test {
protected:
    testsupport::RecordingHost host_;
    testsupport::ScopedHost installed_{host_};
};

TEST_F(BlockDeviceDriveTest, GeometryFollowsFileSizeAndSectorSizeProperty) {
    struct Case {
        const char* name;
        uint64_t fileBytes;
        uint32_t sectorSizeProperty;  // 0: absent
        uint32_t bytesPerSector;
        uint64_t totalSectors;
        uint32_t optimalReadAmount;
    };
    const Case cases[] = {
        {"default 512", kMiB, 0, 512, 2048, 2048},
        {"partial sector at the end ignored", kMiB + 300, 0, 512, 2048, 2048},
        {"2048 from the property", kMiB + 2047, 2048, 2048, 512, 512},
        {"smaller than one sector", 511, 0, 512, 0, 2048},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempImage image("geometry", c.fileBytes, ImageFill::OffsetBytes);
        OpenedDrive drive(image.text(), c.sectorSizeProperty);
        EXPECT_EQ(drive->GetBytesPerSector(), c.bytesPerSector);
        EXPECT_EQ(drive->GetTotalSectors(), c.totalSectors);
        EXPECT_EQ(drive->GetOptimalReadAmount(), c.optimalReadAmount);
        EXPECT_EQ(drive->GetSectorsPerTrack(), 63u);
        EXPECT_FALSE(drive->IsWriteProtected());
    }
}

TEST_F(BlockDeviceDriveTest, OpeningFailsClearlyForWhatIsNoImage) {
    TempImage image("open", kMiB, ImageFill::OffsetBytes);
    const std::filesystem::path missing = image.path().string() + ".missing";
    struct Case {
        const char* name;
        std::string path;
        bool zeroSectorSize;
    };
    const Case cases[] = {
        {"missing file", missing.string(), false},
        {"directory", image.path().parent_path().string(), false},
        {"sector size 0", image.text(), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        quel5::DiagDevice device(QuelString(c.path.c_str()));
        if (c.zeroSectorSize) {
            device.setProperty(L"BytesPerSector", quel5::Value(0u));
        }
        std::string error;
        EXPECT_EQ(host::openBlockDrive(device, &error), nullptr);
        EXPECT_FALSE(error.empty());
    }
}

TEST_F(BlockDeviceDriveTest, ReadsReturnTheImageBytesAtTheSectorsAsked) {
    TempImage image("read", 4 * kMiB, ImageFill::OffsetBytes);
    struct Case {
        const char* name;
        uint32_t bytesPerSector;
        uint64_t start;
        unsigned int count;
        size_t misalignment;
        unsigned int bufferSectors = 0;  // 0: count; more: the whole buffer must be read
    };
    const Case cases[] = {
        {"first sector", 512, 0, 1, 0},
        {"last sector", 512, 8191, 1, 0},
        {"last sector, unaligned buffer", 512, 8191, 1, 1},
        {"1 MiB aligned", 512, 100, 2048, 0},
        {"more than one bounce, unaligned", 512, 100, 3000, 1},
        {"up to the end, unaligned", 512, 7000, 1192, 3},
        {"4096-byte sectors, unaligned", 4096, 3, 2, 8},
        {"4096-byte last sector", 4096, 1023, 1, 0},
        {"count 1 with a 256-sector buffer", 512, 40, 1, 0, 256},
        {"count 1 with a 256-sector buffer up to the end", 512, 7936, 1, 2, 256},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        OpenedDrive drive(image.text(), c.bytesPerSector);
        const unsigned int sectors = c.bufferSectors != 0 ? c.bufferSectors : c.count;
        TestBuffer buffer(size_t{sectors} * c.bytesPerSector, c.misalignment);
        ASSERT_EQ(drive->ReadSectors(c.start, c.count, buffer.data(), buffer.size()),
                  TestResult::PASS)
            << drive->lastError();
        EXPECT_EQ(buffer.bytes(), imageBytes(c.start * c.bytesPerSector, buffer.size()));
        EXPECT_TRUE(buffer.guardsIntact());
        EXPECT_EQ(drive->VerifySectors(c.start, c.count), TestResult::PASS);
    }
}

TEST_F(BlockDeviceDriveTest, RequestsOutsideTheDeviceOrBufferFailUntouched) {
    TempImage image("range", kMiB, ImageFill::OffsetBytes);  // 2048 sectors of 512
    OpenedDrive drive(image.text());
    // The image is locked through the drive's own handle, so writes are refused only for
    // lying outside the device.
    ASSERT_EQ(drive->lock(), TestResult::PASS);
    const TestResult writeRefusal = TestResult::FAIL;
    constexpr uint64_t kLast = 2047;
    struct Case {
        const char* name;
        uint64_t start;
        unsigned int count;
        unsigned int bufferSize;  // 0: count sectors
        bool nullBuffer;
    };
    const Case cases[] = {
        {"first sector past the end", kLast + 1, 1, 0, false},
        {"last sector and one past it", kLast, 2, 0, false},
        {"start near 2^64", std::numeric_limits<uint64_t>::max(), 1, 0, false},
        {"count wrapping past 2^64", 2, std::numeric_limits<unsigned int>::max(), 512, false},
        {"no sectors", 0, 0, 512, false},
        {"buffer one byte short", 10, 2, 1023, false},
        {"no buffer", 10, 1, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const unsigned int size = c.bufferSize != 0 ? c.bufferSize : c.count * 512;
        TestBuffer buffer(size, 0);
        void* data = c.nullBuffer ? nullptr : buffer.data();
        EXPECT_EQ(drive->ReadSectors(c.start, c.count, data, size), TestResult::FAIL);
        EXPECT_EQ(buffer.bytes(), std::vector<uint8_t>(size, kGuard));
        EXPECT_EQ(drive->WriteSectors(c.start, c.count, data, size), writeRefusal);
        EXPECT_FALSE(drive->lastError().empty());
    }
    EXPECT_EQ(drive->VerifySectors(kLast, 2), TestResult::FAIL);
    drive->unLock();
    EXPECT_EQ(image.bytes(), imageBytes(0, kMiB));
}

TEST_F(BlockDeviceDriveTest, WritesLandOnlyWhileLocked) {
    TempImage image("write", 2 * kMiB, ImageFill::OffsetBytes);  // 4096 sectors of 512
    OpenedDrive drive(image.text());
    struct Step {
        const char* name;
        enum { Write, Lock, Unlock } action;
        uint64_t start;
        unsigned int count;
        size_t misalignment;
        TestResult expected;
        unsigned int bufferSectors = 0;  // 0: count; more: the whole buffer must be written
    };
    const Step steps[] = {
        {"before lock", Step::Write, 3, 1, 0, TestResult::DEVICEBUSY},
        {"lock", Step::Lock, 0, 0, 0, TestResult::PASS},
        {"first sector", Step::Write, 0, 1, 0, TestResult::PASS},
        {"last sector, unaligned", Step::Write, 4095, 1, 1, TestResult::PASS},
        {"more than one bounce, unaligned", Step::Write, 10, 3000, 5, TestResult::PASS},
        {"past the end", Step::Write, 4095, 2, 0, TestResult::FAIL},
        {"count 1 with a 256-sector buffer", Step::Write, 3500, 1, 0, TestResult::PASS, 256},
        {"whole buffer would pass the end", Step::Write, 3900, 1, 0, TestResult::FAIL, 256},
        {"unlock", Step::Unlock, 0, 0, 0, TestResult::PASS},
        {"after unlock", Step::Write, 20, 1, 0, TestResult::DEVICEBUSY},
    };
    std::vector<uint8_t> expected = imageBytes(0, 2 * kMiB);
    uint8_t fill = 0x10;
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        if (step.action == Step::Lock) {
            EXPECT_EQ(drive->lock(), step.expected);
            continue;
        }
        if (step.action == Step::Unlock) {
            EXPECT_EQ(drive->unLock(), step.expected);
            continue;
        }
        const unsigned int sectors = step.bufferSectors != 0 ? step.bufferSectors : step.count;
        TestBuffer buffer(size_t{sectors} * 512, step.misalignment);
        const std::vector<uint8_t> data(buffer.size(), fill++);
        buffer.fill(data);
        EXPECT_EQ(drive->WriteSectors(step.start, step.count, buffer.data(), buffer.size()),
                  step.expected);
        EXPECT_EQ(buffer.bytes(), data);
        if (step.expected == TestResult::PASS) {
            expected = patched(expected, step.start * 512, data);
            // The drive reads back what it wrote.
            TestBuffer readBack(buffer.size(), 0);
            EXPECT_EQ(drive->ReadSectors(step.start, step.count, readBack.data(), readBack.size()),
                      TestResult::PASS);
            EXPECT_EQ(readBack.bytes(), data);
        }
    }
    EXPECT_EQ(image.bytes(), expected);
}

TEST_F(BlockDeviceDriveTest, LockRefusedWhileAnotherHolderHasTheImage) {
    TempImage image("busy", kMiB, ImageFill::OffsetBytes);
    OpenedDrive first(image.text());
    OpenedDrive second(image.text());
    ASSERT_EQ(first->lock(), TestResult::PASS);
    EXPECT_EQ(second->lock(), TestResult::DEVICEBUSY);
    EXPECT_EQ(host_.eventKeys(), std::vector<std::string>{"DeviceBusy"});
    EXPECT_NE(second->lockFailure(), "") << "the locking manager's reason is kept";
    const std::vector<uint8_t> data(512, 0x5A);
    EXPECT_EQ(second->WriteSectors(1, 1, data.data(), 512), TestResult::DEVICEBUSY);
    first->unLock();
    ASSERT_EQ(second->lock(), TestResult::PASS);
    EXPECT_EQ(second->lockFailure(), "") << "a lock taken clears the last refusal";
    EXPECT_EQ(second->WriteSectors(1, 1, data.data(), 512), TestResult::PASS);
    second->unLock();
}

TEST_F(BlockDeviceDriveTest, ReadOnlyImageIsWriteProtectedAndNeverWritten) {
    TempImage image("readonly", kMiB, ImageFill::OffsetBytes);
    std::filesystem::permissions(image.path(),
                                 std::filesystem::perms::owner_write |
                                     std::filesystem::perms::group_write |
                                     std::filesystem::perms::others_write,
                                 std::filesystem::perm_options::remove);
    OpenedDrive drive(image.text());
    EXPECT_TRUE(drive->IsWriteProtected());
    // Refused before any write, so that a test never counts failed writes instead.
    EXPECT_EQ(drive->lock(), TestResult::DEVICEBUSY);
    EXPECT_EQ(host_.eventKeys(), std::vector<std::string>{"DeviceBusy"});
    EXPECT_EQ(drive->lockFailure(), image.text() + " is read-only (write-protected)");
    const std::vector<uint8_t> data(512, 0x77);
    EXPECT_EQ(drive->WriteSectors(0, 1, data.data(), 512), TestResult::DEVICEBUSY);
    drive->unLock();
    EXPECT_EQ(image.bytes(), imageBytes(0, kMiB));
}

// Exposes the handle the drive gave its locking manager.
class LockHandleDrive : public host::BlockDeviceDrive {
public:
    using BlockDeviceDrive::BlockDeviceDrive;
    void* lockingHandle() { return host::blockdevice::toDriveHandle(lockingManager.driveHandle()); }
};

// True when the drive's current handle accepts a write (of the bytes already there).
bool handleWrites(kivrlibdrive::Drive& drive) {
    TestBuffer buffer(4096, 0);
    const os::NativeHandle handle = host::blockdevice::fromDriveHandle(drive.GetHandle());
    if (!os::readAt(handle, 0, buffer.data(), buffer.size()).error.ok()) return false;
    return os::writeAt(handle, 0, buffer.data(), buffer.size()).error.ok();
}

// Windows answers a locked volume only through the handle that locked it, so while locked the
// drive must read and write through that one handle, and be read-only again after unLock().
TEST_F(BlockDeviceDriveTest, WhileLockedEveryTransferUsesTheHandleTheLockWasTakenWith) {
    TempImage image("lockhandle", kMiB, ImageFill::OffsetBytes);
    const quel5::DiagDevice device = deviceAt(image.text());
    LockHandleDrive drive(device);
    ASSERT_EQ(drive.OpenDevice(), TestResult::PASS) << drive.lastError();
    struct Step {
        const char* name;
        enum { None, Lock, Unlock } action;
        bool writable;
        bool lockedThroughIt;
    };
    const Step steps[] = {
        {"opened", Step::None, false, false},
        {"locked", Step::Lock, true, true},
        {"unlocked", Step::Unlock, false, false},
        {"locked again", Step::Lock, true, true},
    };
    uint8_t fill = 0x30;
    std::vector<uint8_t> expected = imageBytes(0, kMiB);
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        if (step.action == Step::Lock) {
            ASSERT_EQ(drive.lock(), TestResult::PASS) << drive.lastError();
        }
        if (step.action == Step::Unlock) {
            ASSERT_EQ(drive.unLock(), TestResult::PASS);
        }
        ASSERT_NE(drive.GetHandle(), kivrlibdrive::invalidDriveHandle());
        EXPECT_EQ(handleWrites(drive), step.writable);
        EXPECT_EQ(drive.lockingHandle() == drive.GetHandle(), step.lockedThroughIt);
        const std::vector<uint8_t> data(512, fill++);
        EXPECT_EQ(drive.WriteSectors(40, 1, data.data(), 512),
                  step.writable ? TestResult::PASS : TestResult::DEVICEBUSY);
        if (step.writable) expected = patched(expected, 40 * 512, data);
        std::vector<uint8_t> readBack(512);
        EXPECT_EQ(drive.ReadSectors(40, 1, readBack.data(), 512), TestResult::PASS);
        EXPECT_EQ(readBack,
                  std::vector<uint8_t>(expected.begin() + 40 * 512, expected.begin() + 41 * 512));
    }
    // Reads and writes both end once the locking handle is gone: neither has another handle.
    os::closeNativeHandle(host::blockdevice::fromDriveHandle(drive.GetHandle()));
    std::vector<uint8_t> buffer(512, 0x42);
    EXPECT_EQ(drive.ReadSectors(100, 1, buffer.data(), 512), TestResult::INTERNALERROR);
    EXPECT_EQ(drive.WriteSectors(100, 1, buffer.data(), 512), TestResult::INTERNALERROR);
    drive.CloseDevice();
    EXPECT_EQ(image.bytes(), expected);
}

TEST_F(BlockDeviceDriveTest, HandleFollowsOpenAndClose) {
    TempImage image("handle", kMiB, ImageFill::OffsetBytes);
    OpenedDrive drive(image.text());
    std::vector<uint8_t> buffer(512);
    struct Step {
        const char* name;
        enum { Open, Close } action;
        bool handleValid;
        TestResult read, flush;
    };
    const Step steps[] = {
        {"close", Step::Close, false, TestResult::INTERNALERROR, TestResult::INTERNALERROR},
        {"close again", Step::Close, false, TestResult::INTERNALERROR, TestResult::INTERNALERROR},
        {"reopen", Step::Open, true, TestResult::PASS, TestResult::PASS},
        {"open while open", Step::Open, true, TestResult::PASS, TestResult::PASS},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        EXPECT_EQ(step.action == Step::Open ? drive->OpenDevice() : drive->CloseDevice(),
                  TestResult::PASS);
        EXPECT_EQ(drive->GetHandle() != kivrlibdrive::invalidDriveHandle(), step.handleValid);
        std::fill(buffer.begin(), buffer.end(), 0);
        EXPECT_EQ(drive->ReadSectors(7, 1, buffer.data(), 512), step.read);
        EXPECT_EQ(drive->VerifySectors(7, 1), step.read);
        EXPECT_EQ(drive->FlushCache(), step.flush);
        EXPECT_EQ(buffer == imageBytes(7 * 512, 512), step.read == TestResult::PASS);
    }
}

}  // namespace

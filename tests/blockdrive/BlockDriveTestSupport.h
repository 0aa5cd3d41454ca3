// What the tests of the block-device drive share: a drive opened on a path together with the
// device description it needs, and a sweep of blocks read the way the surface scan reads them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "drives/BlockDeviceDrive.h"
#include "support/TempFile.h"

namespace blockdrivetest {

// The description of the device at `path`; `bytesPerSector` 0 leaves the property unset.
inline quel5::DiagDevice deviceAt(const std::string& path, uint32_t bytesPerSector = 0) {
    quel5::DiagDevice device(QuelString(path.c_str()));
    if (bytesPerSector != 0) device.setProperty(L"BytesPerSector", quel5::Value(bytesPerSector));
    return device;
}

// A block-device drive opened on `path`; a failed open fails the test. Used as a pointer.
class OpenedDrive {
public:
    explicit OpenedDrive(const std::string& path, uint32_t bytesPerSector = 0)
        : device_(deviceAt(path, bytesPerSector)), drive_(device_) {
        EXPECT_EQ(drive_.OpenDevice(), quel5::TestResult::PASS) << drive_.lastError();
    }
    host::BlockDeviceDrive* operator->() { return &drive_; }
    host::BlockDeviceDrive& operator*() { return drive_; }

private:
    quel5::DiagDevice device_;  // the drive keeps a reference to it
    host::BlockDeviceDrive drive_;
};

struct SweptBlock {
    uint64_t sector;
    uint32_t count;
    quel5::TestResult result;
    bool dataRight;  // the bytes of an OffsetBytes image at those sectors
};

// Reads `count` sectors every `stride` sectors from `start` to `end` (the last block cut at
// `end`) into one buffer, as the surface scan does.
inline std::vector<SweptBlock> sweep(host::BlockDeviceDrive& drive, uint64_t start, uint64_t end,
                                     uint64_t stride, uint32_t count,
                                     uint32_t bytesPerSector = 512) {
    std::vector<SweptBlock> blocks;
    std::vector<uint8_t> buffer(size_t{count} * bytesPerSector);
    for (uint64_t sector = start; sector < end; sector += stride) {
        const auto sectors = static_cast<uint32_t>(std::min<uint64_t>(count, end - sector));
        const size_t bytes = size_t{sectors} * bytesPerSector;
        const quel5::TestResult result =
            drive.ReadSectors(sector, sectors, buffer.data(), static_cast<unsigned>(bytes));
        const std::vector<uint8_t> expected =
            testsupport::imageBytes(sector * bytesPerSector, bytes);
        blocks.push_back({sector, sectors, result,
                          std::equal(expected.begin(), expected.end(), buffer.begin())});
    }
    return blocks;
}

}  // namespace blockdrivetest

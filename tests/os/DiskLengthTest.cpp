// Sizing disks and volumes from recorded IOCTL_DISK_GET_LENGTH_INFO answers.
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <vector>

#include "DiskLength.h"

namespace {

using os::detail::geometryOfLength;
using os::detail::lengthFromAnswer;

std::vector<unsigned char> littleEndian(uint64_t value, size_t size = 8) {
    std::vector<unsigned char> bytes(size);
    for (size_t i = 0; i < size && i < 8; ++i)
        bytes[i] = static_cast<unsigned char>(value >> (8 * i));
    return bytes;
}

TEST(DiskLength, LengthAnswers) {
    struct Case {
        const char* name;
        std::vector<unsigned char> answer;
        size_t returned;
        std::optional<uint64_t> expected;
    };
    const Case cases[] = {
        {"a 1 TB volume", littleEndian(1'000'204'886'016), 8, 1'000'204'886'016},
        {"high bytes count", littleEndian(0x0123'4567'89AB'CDEF), 8, 0x0123'4567'89AB'CDEF},
        {"the largest positive", littleEndian(0x7FFF'FFFF'FFFF'FFFF), 8, 0x7FFF'FFFF'FFFF'FFFF},
        {"negative", littleEndian(0x8000'0000'0000'0000), 8, std::nullopt},
        {"one byte short", littleEndian(4096), 7, std::nullopt},
        {"nothing returned", littleEndian(4096), 0, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(lengthFromAnswer(c.answer.data(), c.returned), c.expected);
    }
    EXPECT_EQ(lengthFromAnswer(nullptr, 8), std::nullopt);
}

TEST(DiskLength, VolumeAndOlderGeometryTakeTheLength) {
    // A disk of 1000 cylinders of 255 x 63 sectors of 512 bytes, plus 100 sectors.
    os::DiskGeometry disk;
    disk.cylinders = 1000;
    disk.tracksPerCylinder = 255;
    disk.sectorsPerTrack = 63;
    disk.bytesPerSector = 512;
    disk.totalBytes = (1000ull * 255 * 63 + 100) * 512;
    const uint64_t cylinderBytes = 255ull * 63 * 512;
    struct Case {
        const char* name;
        uint64_t length;
        uint64_t cylinders;
    };
    const Case cases[] = {
        {"a volume of 10 cylinders and a sector", 10 * cylinderBytes + 512, 10},
        {"a volume just short of one cylinder", cylinderBytes - 512, 0},
        {"the whole disk past its last whole cylinder", disk.totalBytes, 1000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const os::DiskGeometry sized = geometryOfLength(disk, c.length);
        EXPECT_EQ(sized.totalBytes, c.length);
        EXPECT_EQ(sized.cylinders, c.cylinders);
        EXPECT_EQ(sized.bytesPerSector, 512u);
        EXPECT_EQ(sized.sectorsPerTrack, 63u);
        EXPECT_EQ(sized.tracksPerCylinder, 255u);
    }
    os::DiskGeometry noChs;
    noChs.bytesPerSector = 4096;
    EXPECT_EQ(geometryOfLength(noChs, 1 << 20).cylinders, 0u);
    EXPECT_EQ(geometryOfLength(noChs, 1 << 20).totalBytes, uint64_t{1} << 20);
}

}  // namespace

// The simulated hard drive: sector storage, injected faults, bounds, time charged to the one
// clock, and the record of operations that tests of the hard-drive tests rely on.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sim/SectorPattern.h"
#include "sim/SimulatedDrive.h"
#include "support/ScopedVirtualClock.h"

namespace {

using quel5::TestResult;
using sim::Operation;
using sim::SectorFault;
using Bytes = std::vector<uint8_t>;

constexpr uint32_t kSector = 512;

sim::SimulatedDriveConfig sized(uint64_t totalSectors) {
    sim::SimulatedDriveConfig config;
    config.totalSectors = totalSectors;
    config.bytesPerSector = kSector;
    return config;
}

Bytes unwritten(uint64_t lba, uint32_t sectors = 1) {
    Bytes data(sectors * kSector);
    for (uint32_t i = 0; i < sectors; ++i) {
        sim::fillUnwrittenSector(sim::UnwrittenContent::LbaPattern, lba + i,
                                 data.data() + i * kSector, kSector);
    }
    return data;
}

struct Fixture {
    explicit Fixture(sim::SimulatedDriveConfig config)
        : device(L"sim:disk"), drive(device, config) {}
    Bytes read(uint64_t lba, uint32_t sectors, TestResult expected = TestResult::PASS) {
        Bytes data(sectors * kSector, 0xCC);
        EXPECT_EQ(drive.ReadSectors(lba, sectors, data.data(), sectors * kSector), expected);
        return data;
    }
    TestResult write(uint64_t lba, const Bytes& data) {
        return drive.WriteSectors(lba, static_cast<unsigned>(data.size() / kSector), data.data(),
                                  static_cast<unsigned>(data.size()));
    }
    quel5::DiagDevice device;
    sim::SimulatedDrive drive;
};

TEST(SectorFaults, SpansMergeAndAnswerAtTheirEdges) {
    constexpr uint64_t kLast = std::numeric_limits<uint64_t>::max();
    const struct {
        const char* name;
        std::vector<std::pair<uint64_t, uint64_t>> added;  // first, count
        std::size_t spans;
        std::vector<std::pair<uint64_t, bool>> sectors;  // sector, carries the fault
    } cases[] = {
        {"apart",
         {{10, 5}, {30, 5}},
         2,
         {{9, false}, {10, true}, {14, true}, {15, false}, {29, false}, {34, true}, {35, false}}},
        {"touching", {{15, 5}, {10, 5}}, 1, {{9, false}, {10, true}, {19, true}, {20, false}}},
        {"inside another", {{10, 20}, {12, 3}}, 1, {{10, true}, {29, true}, {30, false}}},
        {"bridging two",
         {{10, 5}, {30, 5}, {14, 17}},
         1,
         {{9, false}, {22, true}, {34, true}, {35, false}}},
        {"empty span", {{10, 0}}, 0, {{10, false}}},
        {"at the top of 64 bits", {{kLast - 1, 5}}, 1, {{kLast - 2, false}, {kLast - 1, true}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        sim::SectorFaults faults;
        for (const auto& [first, count] : c.added)
            faults.addSpan(first, count, SectorFault::ReadFails);
        EXPECT_EQ(faults.spanCount(SectorFault::ReadFails), c.spans);
        for (const auto& [sector, expected] : c.sectors) {
            EXPECT_EQ(faults.has(sector, SectorFault::ReadFails), expected) << sector;
            EXPECT_FALSE(faults.has(sector, SectorFault::WriteFails)) << sector;
        }
    }
}

TEST(SectorFaults, LowestFailingSectorOfASpanDecidesTheReadResult) {
    sim::SectorFaults faults;
    faults.addSpan(100, 50, SectorFault::ReadFails);
    faults.addSpan(120, 1, SectorFault::ReadInternalError);
    faults.addSpan(200, 10, SectorFault::ReadInternalError);
    const struct {
        uint64_t first, count;
        std::optional<TestResult> expected;
    } cases[] = {
        {90, 10, std::nullopt},
        {90, 11, TestResult::FAIL},
        {115, 10, TestResult::FAIL},
        {120, 1, TestResult::INTERNALERROR},
        {150, 50, std::nullopt},
        {150, 51, TestResult::INTERNALERROR},
        {209, 1, TestResult::INTERNALERROR},
        {210, 1000, std::nullopt},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(faults.readFailure(c.first, c.count), c.expected) << c.first << "+" << c.count;
    }
    faults.clear();
    EXPECT_EQ(faults.readFailure(0, 1000), std::nullopt);
}

TEST(SimulatedDrive, ReadFaultsAnswerForAnySectorTheReadCovers) {
    struct Row {
        const char* name;
        uint64_t start;
        uint32_t sectors;
        TestResult expected;
    };
    // ReadFails at 10, ReadInternalError at 20, WriteFails at 40.
    const Row rows[] = {
        {"exactly the failing sector", 10, 1, TestResult::FAIL},
        {"span ending just before", 6, 4, TestResult::PASS},
        {"span starting just after", 11, 4, TestResult::PASS},
        {"internal error", 20, 1, TestResult::INTERNALERROR},
        {"write fault does not hurt reads", 40, 1, TestResult::PASS},
    };
    Fixture f(sized(100));
    f.drive.injectFault(10, SectorFault::ReadFails);
    f.drive.injectFault(20, SectorFault::ReadInternalError);
    f.drive.injectFault(40, SectorFault::WriteFails);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Bytes data = f.read(row.start, row.sectors, row.expected);
        const Bytes untouched(row.sectors * kSector, 0xCC);
        EXPECT_EQ(data,
                  row.expected == TestResult::PASS ? unwritten(row.start, row.sectors) : untouched);
    }
    f.drive.clearFaults();
    EXPECT_EQ(f.read(10, 31), unwritten(10, 31));
}

TEST(SimulatedDrive, WriteFaultsRefuseOrForgetTheData) {
    Fixture f(sized(100));
    f.drive.injectFault(10, SectorFault::WriteFails);
    f.drive.injectFault(20, SectorFault::Forgetful);
    const Bytes ones(3 * kSector, 0x11);

    EXPECT_EQ(f.write(9, ones), TestResult::FAIL);  // covers 10: nothing at all is written
    EXPECT_EQ(f.read(9, 3), unwritten(9, 3));
    EXPECT_EQ(f.write(11, ones), TestResult::PASS);
    EXPECT_EQ(f.read(11, 3), ones);

    EXPECT_EQ(f.write(19, ones), TestResult::PASS);  // accepted, but 20 keeps its content
    const Bytes back = f.read(19, 3);
    EXPECT_EQ(Bytes(back.begin(), back.begin() + kSector), Bytes(kSector, 0x11));
    EXPECT_EQ(Bytes(back.begin() + kSector, back.begin() + 2 * kSector), unwritten(20));
    EXPECT_EQ(Bytes(back.begin() + 2 * kSector, back.end()), Bytes(kSector, 0x11));
}

TEST(SimulatedDrive, FlakySectorReadsDifferentlyAfterItsFirstRead) {
    Fixture f(sized(100));
    f.drive.injectFault(3, SectorFault::Flaky);
    const Bytes first = f.read(3, 1);
    const Bytes second = f.read(3, 1);
    const Bytes third = f.read(2, 3);

    EXPECT_EQ(first, unwritten(3));
    EXPECT_NE(second, first);
    const Bytes thirdOfThree(third.begin() + kSector, third.begin() + 2 * kSector);
    EXPECT_NE(thirdOfThree, first);
    EXPECT_NE(thirdOfThree, second);
    EXPECT_EQ(Bytes(third.begin(), third.begin() + kSector), unwritten(2));
    EXPECT_EQ(Bytes(third.begin() + 2 * kSector, third.end()), unwritten(4));
}

TEST(SimulatedDrive, OperationsOutsideTheDriveOrWithBadBuffersFailWithoutTouchingMemory) {
    struct Row {
        const char* name;
        uint64_t start;
        uint32_t bufferBytes;
        TestResult expected;
    };
    constexpr uint64_t kMax = std::numeric_limits<uint64_t>::max();
    const Row rows[] = {
        {"last sector", 999, kSector, TestResult::PASS},
        {"one past the end", 999, 2 * kSector, TestResult::FAIL},
        {"at capacity", 1000, kSector, TestResult::FAIL},
        {"wrapping address", kMax - 1, 4 * kSector, TestResult::FAIL},
        {"highest address", kMax, kSector, TestResult::FAIL},
        {"part of a sector", 0, kSector + 1, TestResult::FAIL},
        {"empty buffer", 0, 0, TestResult::FAIL},
    };
    Fixture f(sized(1000));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        // The buffer holds exactly bufferBytes; anything written past it would be caught by
        // the guard (and by the address sanitizer).
        Bytes buffer(row.bufferBytes + 64, 0xCC);
        EXPECT_EQ(f.drive.ReadSectors(row.start, 1, buffer.data(), row.bufferBytes), row.expected);
        EXPECT_EQ(Bytes(buffer.end() - 64, buffer.end()), Bytes(64, 0xCC));
        const Bytes data(row.bufferBytes, 0x77);
        EXPECT_EQ(f.drive.WriteSectors(row.start, 1, data.data(), row.bufferBytes), row.expected);
    }
    EXPECT_EQ(f.drive.ReadSectors(0, 1, nullptr, kSector), TestResult::FAIL);
    EXPECT_EQ(f.drive.storedSectors(), 1u);  // only the one write that fitted
}

TEST(SimulatedDrive, HugeDriveKeepsOnlyWhatWasWrittenDifferently) {
    const uint64_t total = uint64_t{1} << 41;  // a petabyte of 512-byte sectors
    Fixture f(sized(total));
    const Bytes marks(kSector, 0x5A);

    EXPECT_EQ(f.write(total - 1, marks), TestResult::PASS);
    EXPECT_EQ(f.write(0, marks), TestResult::PASS);
    EXPECT_EQ(f.drive.storedSectors(), 2u);
    EXPECT_EQ(f.read(total - 1, 1), marks);
    const Bytes far = f.read(total / 3, 2);
    EXPECT_EQ(far, unwritten(total / 3, 2));
    uint64_t firstWord = 0;
    std::memcpy(&firstWord, far.data(), sizeof firstWord);  // the address, little-endian
    EXPECT_EQ(firstWord, total / 3);

    EXPECT_EQ(f.write(total - 1, unwritten(total - 1)), TestResult::PASS);  // restored
    EXPECT_EQ(f.drive.storedSectors(), 1u);
}

TEST(SimulatedDrive, ZeroContentDriveReadsZerosWhereNothingWasWritten) {
    auto config = sized(10);
    config.unwritten = sim::UnwrittenContent::Zeros;
    Fixture f(config);
    EXPECT_EQ(f.read(4, 2), Bytes(2 * kSector, 0));
    EXPECT_EQ(f.write(4, Bytes(kSector, 0)), TestResult::PASS);
    EXPECT_EQ(f.drive.storedSectors(), 0u);
}

TEST(SimulatedDrive, ImageFileHoldsTheSectorsAcrossDrives) {
    const auto image = std::filesystem::temp_directory_path() / "libdrive_sim_image.img";
    Bytes content(8 * kSector);
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<uint8_t>(i * 7);
    std::ofstream(image, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));

    auto config = sized(0);
    config.imagePath = image;
    {
        Fixture f(config);
        EXPECT_EQ(f.drive.GetTotalSectors(), 8u);
        EXPECT_EQ(f.read(2, 1),
                  Bytes(content.begin() + 2 * kSector, content.begin() + 3 * kSector));
        EXPECT_EQ(f.write(5, Bytes(kSector, 0xA5)), TestResult::PASS);
        EXPECT_EQ(f.read(8, 1, TestResult::FAIL), Bytes(kSector, 0xCC));
    }
    config.totalSectors = 16;  // bigger than the file: the rest reads as zeros until written
    {
        Fixture f(config);
        EXPECT_EQ(f.read(5, 1), Bytes(kSector, 0xA5));
        EXPECT_EQ(f.read(4, 1),
                  Bytes(content.begin() + 4 * kSector, content.begin() + 5 * kSector));
        EXPECT_EQ(f.read(10, 2), Bytes(2 * kSector, 0));
        EXPECT_EQ(f.write(12, Bytes(kSector, 0x3C)), TestResult::PASS);
    }
    EXPECT_EQ(std::filesystem::file_size(image), 13u * kSector);
    std::filesystem::remove(image);
}

TEST(SimulatedDrive, ChargesItsCostToTheInstalledClock) {
    struct Step {
        Operation::Kind kind;
        uint64_t start;
        uint32_t sectors;
    };
    struct Row {
        const char* name;
        sim::TimeCost cost;
        std::vector<Step> steps;
        uint64_t expectedMs;
    };
    const auto R = Operation::Kind::Read;
    const auto W = Operation::Kind::Write;
    const Row rows[] = {
        {"per read", {5, 0, 0, {}}, {{R, 0, 1}, {R, 0, 8}}, 10},
        {"per write", {5, 7, 0, {}}, {{W, 0, 1}, {W, 0, 2}, {R, 0, 1}}, 19},
        {"per sector", {0, 0, 1500, {}}, {{R, 0, 4}}, 6},
        {"fractions carry over", {0, 0, 300, {}}, {{R, 0, 1}, {R, 0, 1}, {R, 0, 1}, {R, 0, 1}}, 1},
        {"failed read still costs", {3, 0, 1000, {}}, {{R, 99, 2}}, 5},
        {"free drive", {0, 0, 0, {}}, {{R, 0, 64}, {W, 0, 64}}, 0},
        // Sectors 10-19 cost 40 ms more, 15-16 80: a read touching a span pays its slowest,
        // once; reads beside a span and writes over it pay nothing more.
        {"slow spans",
         {1, 0, 0, {{10, 10, 40}, {15, 2, 80}}},
         {{R, 9, 1}, {R, 20, 1}, {R, 8, 3}, {R, 19, 4}, {R, 14, 2}, {W, 10, 10}},
         5 + 40 + 40 + 80},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        testsupport::ScopedVirtualClock clock;
        auto config = sized(100);
        config.cost = row.cost;
        Fixture f(config);
        for (const Step& step : row.steps) {
            Bytes data(step.sectors * kSector);
            if (step.kind == R) {
                f.drive.ReadSectors(step.start, step.sectors, data.data(),
                                    static_cast<unsigned int>(data.size()));
            } else {
                f.drive.WriteSectors(step.start, step.sectors, data.data(),
                                     static_cast<unsigned int>(data.size()));
            }
        }
        EXPECT_EQ(clock.elapsedMilliseconds(), row.expectedMs);
        EXPECT_EQ(f.drive.chargedMilliseconds(), row.expectedMs);
    }
}

TEST(SimulatedDrive, RecordsEveryOperationInOrderWithWhatItCovered) {
    Fixture f(sized(1000));
    f.drive.injectFault(7, SectorFault::ReadFails);
    Bytes block(256 * kSector);

    f.read(1, 2);
    f.write(3, Bytes(kSector, 1));
    f.read(7, 1, TestResult::FAIL);
    f.drive.ReadSectors(100, 1, block.data(),
                        static_cast<unsigned int>(block.size()));  // the buffer decides the length
    EXPECT_EQ(f.drive.VerifySectors(5, 3), TestResult::FAIL);
    f.read(1000, 1, TestResult::FAIL);

    const std::vector<Operation> expected = {
        {Operation::Kind::Read, 1, 2, 2, TestResult::PASS},
        {Operation::Kind::Write, 3, 1, 1, TestResult::PASS},
        {Operation::Kind::Read, 7, 1, 1, TestResult::FAIL},
        {Operation::Kind::Read, 100, 256, 1, TestResult::PASS},
        {Operation::Kind::Verify, 5, 3, 3, TestResult::FAIL},
        {Operation::Kind::Read, 1000, 1, 1, TestResult::FAIL},
    };
    EXPECT_EQ(f.drive.operations(), expected);
    EXPECT_EQ(Bytes(block.begin(), block.end()), unwritten(100, 256));
    f.drive.clearOperations();
    EXPECT_TRUE(f.drive.operations().empty());
}

}  // namespace

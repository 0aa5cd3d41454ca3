// The write cache: plain reads may answer from it, forced-unit-access reads and cache
// synchronisation go to the medium; faults that make the two disagree.
#include <functional>

#include "WriterFixture.h"

namespace mmctest {
namespace {

constexpr uint32_t kLba = 6;

struct CacheRow {
    const char* name;
    std::function<void(WriterTest&, sim::mmc::EmulatedWriter&)> setup;
    uint8_t plainRead;   // fill byte a plain read returns
    uint8_t forcedRead;  // fill byte a forced-unit-access read returns
    uint8_t medium;      // fill byte the medium holds afterwards
};

using CacheTest = WriterTest;

const CacheRow kRows[] = {
    {"written, not flushed", [](WriterTest&, auto&) {}, 0xA1, 0xA1, 0xA1},
    {"flushed", [](WriterTest& t, auto&) { EXPECT_EQ(t.synchronizeCache(), 0u); }, 0xA1, 0xA1,
     0xA1},
    {"lost on the way to the medium",
     [](WriterTest& t, sim::mmc::EmulatedWriter& w) {
         w.loseWritesAt(kLba);
         EXPECT_EQ(t.synchronizeCache(), 0u);
     },
     0xA1, 0x00, 0x00},
    {"stale data in the cache",
     [](WriterTest& t, sim::mmc::EmulatedWriter& w) {
         EXPECT_EQ(t.synchronizeCache(), 0u);
         w.holdStaleData(kLba, Bytes(sim::mmc::kSectorBytes, 0x3C));
     },
     0x3C, 0xA1, 0xA1},
};

TEST_F(CacheTest, PlainReadsMayComeFromTheCacheForcedReadsFromTheMedium) {
    for (const CacheRow& row : kRows) {
        SCOPED_TRACE(row.name);
        writer->clearFaults();
        loadWritable(MediaKind::DvdPlusRw);
        ASSERT_EQ(write(kLba, 1, 0xA1), 0u);
        row.setup(*this, *writer);
        Bytes plain, forced;
        ASSERT_EQ(read(kLba, 1, false, plain), 0u);
        ASSERT_EQ(read(kLba, 1, true, forced), 0u);
        EXPECT_EQ(plain, filled(1, row.plainRead));
        EXPECT_EQ(forced, filled(1, row.forcedRead));
        EXPECT_EQ(writer->mediumSector(kLba), filled(1, row.medium));
    }
}

TEST_F(CacheTest, DataStaysInTheCacheUntilSynchronised) {
    loadWritable(MediaKind::BdRe);
    ASSERT_EQ(write(0, 3, 0x77), 0u);
    EXPECT_EQ(writer->snapshot().dirtyCacheSectors, 3u);
    EXPECT_EQ(writer->mediumSector(2), filled(1, 0));
    ASSERT_EQ(synchronizeCache(), 0u);
    EXPECT_EQ(writer->snapshot().dirtyCacheSectors, 0u);
    EXPECT_EQ(writer->mediumSector(2), filled(1, 0x77));
}

TEST_F(CacheTest, AForcedReadFlushesOnlyTheSectorsItCovers) {
    loadWritable(MediaKind::DvdRam);
    ASSERT_EQ(write(10, 3, 0x42), 0u);
    Bytes data;
    ASSERT_EQ(read(11, 1, true, data), 0u);
    EXPECT_EQ(writer->mediumSector(10), filled(1, 0));
    EXPECT_EQ(writer->mediumSector(11), filled(1, 0x42));
    EXPECT_EQ(writer->mediumSector(12), filled(1, 0));
}

TEST_F(CacheTest, AFullCachePushesItsOldestSectorsToTheMedium) {
    sim::mmc::WriterConfig config;
    config.cacheSectors = 4;
    renewWriter(config);
    loadWritable(MediaKind::DvdPlusRw);
    for (uint32_t lba = 0; lba < 6; ++lba)
        ASSERT_EQ(write(lba, 1, static_cast<uint8_t>(lba + 1)), 0u);
    EXPECT_EQ(writer->snapshot().dirtyCacheSectors, 4u);
    EXPECT_EQ(writer->mediumSector(0), filled(1, 1));
    EXPECT_EQ(writer->mediumSector(1), filled(1, 2));
    EXPECT_EQ(writer->mediumSector(2), filled(1, 0));
}

TEST_F(CacheTest, EjectingPutsCachedSectorsOnTheDisc) {
    loadWritable(MediaKind::DvdPlusRw);
    ASSERT_EQ(write(0, 2, 0x19), 0u);
    ASSERT_EQ(kivscsi::EjectMedia(path, kDevice), 0u);
    EXPECT_EQ(writer->mediumSector(1), filled(1, 0x19));
    EXPECT_EQ(writer->snapshot().dirtyCacheSectors, 0u);
}

TEST_F(CacheTest, WritingTakesTimeAtTheSelectedSpeed) {
    loadWritable(MediaKind::DvdPlusRw);
    const struct {
        uint16_t requested;
        uint64_t msFor32Sectors;  // 65,536 bytes
    } rows[] = {{0xFFFF, 5}, {2770, 23}};
    for (const auto& row : rows) {
        ASSERT_EQ(kivscsi::KIVR_SetCDSpeed(path, kDevice, 0xFFFF, row.requested), 0u);
        const uint64_t before = clock.elapsedMilliseconds();
        ASSERT_EQ(write(0, 32, 1), 0u);
        EXPECT_NEAR(static_cast<double>(clock.elapsedMilliseconds() - before),
                    static_cast<double>(row.msFor32Sectors), 1.0);
    }
}

}  // namespace
}  // namespace mmctest

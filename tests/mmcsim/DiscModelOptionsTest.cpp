// Disc model options a host exposes: a disc the read/write test has used before, and a writer
// that lets no virtual time pass.
#include <functional>

#include "WriterFixture.h"

namespace mmctest {
namespace {

using sim::mmc::DiscStatus;

DiscModel used(MediaKind kind, std::optional<uint16_t> count, DiscStatus status,
               uint32_t recorded = 0) {
    DiscModel disc = sim::mmc::discOf(kind);
    disc.capacitySectors = 1000;
    disc.status = status;
    disc.recordedSectors = recorded;
    disc.usageCount = count;
    return disc;
}

TEST_F(WriterTest, AUsedDiscCarriesItsUsageMarkerInSectorZero) {
    struct Row {
        const char* name;
        DiscModel disc;
        Bytes head;  // the first six bytes of sector 0
        uint8_t discStatus;
        uint32_t readable;
    };
    const Bytes fill = {0xBD, 0xBD};
    // clang-format off
    const std::vector<Row> rows = {
        {"blank DVD+R made appendable", used(MediaKind::DvdPlusR, 0x01FF, DiscStatus::Blank), {0x01, 0xFF, 0x01, 0xFF, 0xBD, 0xBD}, 1, 1},
        {"appendable CD-R keeps its recorded sectors", used(MediaKind::CdR, 3, DiscStatus::Appendable, 300), {0x00, 0x03, 0x00, 0x03, 0xBD, 0xBD}, 1, 300},
        {"closed DVD-R with nothing recorded holds the marker", used(MediaKind::DvdMinusR, 0x8000, DiscStatus::Complete), {0x80, 0x00, 0x80, 0x00, 0xBD, 0xBD}, 2, 1},
        {"blank DVD+RW made formatted", used(MediaKind::DvdPlusRw, 0xFFFF, DiscStatus::Blank), {0xFF, 0xFF, 0xFF, 0xFF, 0xBD, 0xBD}, 2, 1000},
        {"count zero still marks the disc", used(MediaKind::BdR, 0, DiscStatus::Blank), {0x00, 0x00, 0x00, 0x00, 0xBD, 0xBD}, 1, 1},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        loadReady(row.disc);
        EXPECT_EQ(discInformation().discStatus, row.discStatus);
        EXPECT_EQ(writer->snapshot().readableSectors, row.readable);
        Bytes sector;
        ASSERT_EQ(read(0, 1, true, sector), 0u);
        EXPECT_EQ(Bytes(sector.begin(), sector.begin() + 6), row.head);
        EXPECT_EQ(std::count(sector.begin() + 4, sector.end(), 0xBD),
                  static_cast<std::ptrdiff_t>(sim::mmc::kSectorBytes - 4));
    }

    loadReady(used(MediaKind::DvdPlusR, std::nullopt, DiscStatus::Blank));
    EXPECT_EQ(discInformation().discStatus, 0);
    EXPECT_EQ(writer->mediumSector(0)->front(), 0x00);
}

TEST_F(WriterTest, AUsedAppendableDiscIsWrittenAfterItsMarker) {
    loadReady(used(MediaKind::DvdPlusR, 7, DiscStatus::Blank));
    const Answer answer = trackInformation(1, 0xFF);
    ASSERT_EQ(answer.status, 0u);
    const auto track = kivscsi::decodeTrackInformation(answer.data(), answer.received);
    ASSERT_TRUE(track);
    EXPECT_EQ(track->trackNumber, 2);
    EXPECT_TRUE(track->nextWritableValid);
    EXPECT_EQ(track->nextWritableAddress, 1u);
    EXPECT_EQ(track->freeBlocks, 999u);
    EXPECT_EQ(write(0, 1, 0x44), 0x2102u);
    EXPECT_EQ(write(1, 1, 0x44), 0u);
}

TEST_F(WriterTest, AnUntimedWriterLetsNoVirtualTimePass) {
    sim::mmc::WriterConfig untimed;
    untimed.timed = false;
    renewWriter(untimed);
    const struct {
        const char* name;
        MediaKind kind;
        std::function<Status(WriterTest&)> operation;
    } rows[] = {
        {"write at the slowest speed", MediaKind::DvdPlusR,
         [](WriterTest& t) {
             EXPECT_EQ(kivscsi::KIVR_SetCDSpeed(t.path, kDevice, 0xFFFF, 1), 0u);
             return t.write(0, 1000, 0x5A);
         }},
        {"read back", MediaKind::DvdRom,
         [](WriterTest& t) {
             Bytes out;
             return t.read(0, 1000, true, out);
         }},
        {"full blank", MediaKind::CdRw,
         [](WriterTest& t) { return kivscsi::Blank(t.path, kDevice, 0); }},
        {"DVD+RW format", MediaKind::DvdPlusRw, [](WriterTest& t) { return t.format(0x26); }},
        {"BD-RE format", MediaKind::BdRe, [](WriterTest& t) { return t.format(0x30); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const uint64_t start = clock.elapsedMilliseconds();
        writer->insertDisc(sim::mmc::discOf(row.kind));
        EXPECT_EQ(testUnitReady(), 0u);  // no spin-up
        EXPECT_EQ(row.operation(*this), 0u);
        EXPECT_EQ(testUnitReady(), 0u);  // nothing left running
        EXPECT_EQ(discInformation().backgroundFormatStatus,
                  row.kind == MediaKind::DvdPlusRw || row.kind == MediaKind::BdRe ? 3 : 0);
        EXPECT_EQ(clock.elapsedMilliseconds(), start);
    }
}

}  // namespace
}  // namespace mmctest

// The write parameters page as the writer judges it when WRITE arrives: what each kind of disc
// accepts, that a refused write leaves the disc untouched, and the switch that turns it off.
#include "WriterFixture.h"

namespace mmctest {
namespace {

constexpr uint8_t kPowerOnPage = 0xFF;  // select nothing: the page the drive came up with

DiscModel writable(MediaKind kind) {
    DiscModel disc = sim::mmc::discOf(kind);
    disc.capacitySectors = 1000;
    if (sim::mmc::traitsOf(kind).recording == sim::mmc::Recording::Overwrite) {
        disc.status = sim::mmc::DiscStatus::Complete;
    }
    return disc;
}

DiscModel restrictedOverwriteDvdMinusRw() {
    DiscModel disc = writable(MediaKind::DvdMinusRw);
    disc.profile = sim::mmc::kProfileDvdMinusRwRestrictedOverwrite;
    return disc;
}

TEST_F(WriterTest, WritesNeedWriteParametersThatSuitTheDisc) {
    struct Row {
        const char* name;
        DiscModel disc;
        uint8_t writeType;  // byte 2 (BUFE and write type), or kPowerOnPage
        uint8_t trackMode;  // byte 3
        uint8_t dataBlockType;
        Status expected;
    };
    // clang-format off
    const std::vector<Row> rows = {
        {"CD-R, power-on page", writable(MediaKind::CdR), kPowerOnPage, 0, 0, 0x6400},
        {"CD-R, track at once, mode 1", writable(MediaKind::CdR), 0x41, 0x04, 8, 0},
        {"CD-R, session at once, mode 1", writable(MediaKind::CdR), 0x42, 0x04, 8, 0},
        {"CD-R, track at once, raw blocks", writable(MediaKind::CdR), 0x41, 0x04, 0, 0x6400},
        {"CD-R, track at once, incremental track", writable(MediaKind::CdR), 0x41, 0x05, 8, 0x6400},
        {"CD-R, packet, incremental track", writable(MediaKind::CdR), 0x40, 0x05, 8, 0},
        {"CD-R, packet, uninterrupted track", writable(MediaKind::CdR), 0x40, 0x04, 8, 0x6400},
        {"CD-R, raw", writable(MediaKind::CdR), 0x43, 0x04, 8, 0x6400},
        {"CD-RW, power-on page", writable(MediaKind::CdRw), kPowerOnPage, 0, 0, 0x6400},
        {"CD-RW, track at once, copy permitted, multi-session", writable(MediaKind::CdRw), 0x41, 0xC6, 8, 0},
        {"DVD-R, power-on page", writable(MediaKind::DvdMinusR), kPowerOnPage, 0, 0, 0},
        {"DVD-R, track at once", writable(MediaKind::DvdMinusR), 0x41, 0x04, 8, 0x6400},
        {"DVD-R, disc at once", writable(MediaKind::DvdMinusR), 0x42, 0x04, 8, 0},
        {"DVD-R, layer jump", writable(MediaKind::DvdMinusR), 0x44, 0x04, 8, 0x6400},
        {"DVD-RW sequential, track at once", writable(MediaKind::DvdMinusRw), 0x41, 0x04, 8, 0x6400},
        {"DVD-RW sequential, incremental", writable(MediaKind::DvdMinusRw), 0x00, 0x05, 8, 0},
        {"DVD-RW restricted overwrite, track at once", restrictedOverwriteDvdMinusRw(), 0x41, 0x04, 8, 0},
        {"DVD-R DL, layer jump", writable(MediaKind::DvdMinusRDualLayer), 0x44, 0x04, 8, 0},
        {"DVD-R DL, track at once", writable(MediaKind::DvdMinusRDualLayer), 0x41, 0x04, 8, 0x6400},
        {"DVD+R, track at once, mode 2", writable(MediaKind::DvdPlusR), 0x41, 0x04, 10, 0},
        {"BD-R, raw", writable(MediaKind::BdR), 0x43, 0x00, 0, 0},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        renewWriter();  // with the power-on page
        loadReady(row.disc);
        if (row.writeType != kPowerOnPage) {
            ASSERT_EQ(selectWriteParameters(row.writeType, row.trackMode, row.dataBlockType), 0u);
        }
        EXPECT_EQ(write(0, 16, 0x6B), row.expected);
        EXPECT_EQ(synchronizeCache(), 0u);
        const uint8_t first = writer->mediumSector(0)->front();
        if (row.expected == 0) {
            EXPECT_EQ(first, 0x6B);
        } else {
            // Nothing written, nothing taken from the disc's space.
            EXPECT_EQ(first, 0x00);
            EXPECT_EQ(writer->snapshot().nextWritable, 0u);
        }
    }
}

TEST_F(WriterTest, ARefusedWriteAnswersIllegalRequest) {
    loadReady(writable(MediaKind::CdR));
    EXPECT_EQ(write(0, 4, 0x11), 0x6400u);
    EXPECT_EQ(writer->history().back().sense.key, sim::mmc::key::kIllegalRequest);
}

TEST_F(WriterTest, WritesIgnoreThePageWhenTheCheckIsOff) {
    sim::mmc::WriterConfig unchecked;
    unchecked.enforceWriteParameters = false;
    renewWriter(unchecked);
    for (const MediaKind kind : {MediaKind::CdR, MediaKind::DvdMinusR}) {
        SCOPED_TRACE(sim::mmc::traitsOf(kind).name);
        loadReady(writable(kind));
        ASSERT_EQ(selectWriteParameters(0x43, 0x00, 0), 0u);  // raw: wrong for both
        EXPECT_EQ(write(0, 4, 0x33), 0u);
        EXPECT_EQ(writer->snapshot().nextWritable, 4u);
    }
}

}  // namespace
}  // namespace mmctest

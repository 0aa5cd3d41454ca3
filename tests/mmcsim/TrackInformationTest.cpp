// READ TRACK INFORMATION and GET PERFORMANCE as the emulated writer answers them from its disc,
// read through the SCSI library's commands and decoders.
#include <functional>
#include <optional>
#include <tuple>

#include "WriterFixture.h"

namespace mmctest {
namespace {

using sim::mmc::DiscStatus;

constexpr uint32_t kCapacity = 1000;

// The decoded track information of an answer that succeeded.
std::optional<kivscsi::TrackInformation> decoded(const Answer& answer) {
    if (answer.status != 0) return std::nullopt;
    return kivscsi::decodeTrackInformation(answer.data(), answer.received);
}

DiscModel small(MediaKind kind, DiscStatus status = DiscStatus::Blank, uint32_t recorded = 0) {
    DiscModel disc = sim::mmc::discOf(kind);
    disc.capacitySectors = kCapacity;
    if (disc.status != DiscStatus::Complete) disc.status = status;
    if (disc.status == DiscStatus::Complete && recorded == 0) recorded = kCapacity;
    disc.recordedSectors = recorded;
    return disc;
}

// Track and session number, track start, whether the next writable address is valid, that
// address, free blocks, track size and whether the track is blank.
using Expected = std::tuple<uint16_t, uint16_t, uint32_t, bool, uint32_t, uint32_t, uint32_t, bool>;

Expected fieldsOf(const kivscsi::TrackInformation& t) {
    return {t.trackNumber,         t.sessionNumber, t.trackStart, t.nextWritableValid,
            t.nextWritableAddress, t.freeBlocks,    t.trackSize,  t.blank};
}

TEST_F(WriterTest, TrackInformationFollowsTheDisc) {
    struct Row {
        const char* name;
        std::function<void(WriterTest&)> load;
        uint8_t type;
        uint32_t address;
        Status status;
        Expected expected;
    };
    const auto loaded = [](DiscModel disc) { return [disc](WriterTest& t) { t.loadReady(disc); }; };
    const auto appendableCd = loaded(small(MediaKind::CdR, DiscStatus::Appendable, 300));
    const auto blankDvdR = loaded(small(MediaKind::DvdPlusR));
    const auto closedCdTrack = [](WriterTest& t) {
        t.loadWritable(MediaKind::CdR, kCapacity);
        EXPECT_EQ(t.write(0, 10, 1), 0u);
        EXPECT_EQ(kivscsi::CloseTrack(t.path, kDevice), 0u);
    };
    // clang-format off
    const std::vector<Row> rows = {
        {"blank DVD+R, invisible track", blankDvdR, 1, 0xFF, 0, {1, 1, 0, true, 0, 1000, 1000, true}},
        {"blank DVD+R, track 1", blankDvdR, 1, 1, 0, {1, 1, 0, true, 0, 1000, 1000, true}},
        {"blank DVD+R, last LBA", blankDvdR, 0, 999, 0, {1, 1, 0, true, 0, 1000, 1000, true}},
        {"blank DVD+R, LBA past the end", blankDvdR, 0, 1000, 0x2400, {}},
        {"blank DVD+R, track 2", blankDvdR, 1, 2, 0x2400, {}},
        {"blank DVD+R, track 0", blankDvdR, 1, 0, 0x2400, {}},
        {"appendable CD-R, invisible track", appendableCd, 1, 0xFF, 0, {2, 2, 300, true, 300, 700, 700, true}},
        {"appendable CD-R, track 1", appendableCd, 1, 1, 0, {1, 1, 0, false, 0, 0, 300, false}},
        {"appendable CD-R, last LBA of track 1", appendableCd, 0, 299, 0, {1, 1, 0, false, 0, 0, 300, false}},
        {"appendable CD-R, first LBA of track 2", appendableCd, 0, 300, 0, {2, 2, 300, true, 300, 700, 700, true}},
        {"appendable CD-R, session 2", appendableCd, 2, 2, 0, {2, 2, 300, true, 300, 700, 700, true}},
        {"appendable CD-R, session 3", appendableCd, 2, 3, 0x2400, {}},
        {"complete DVD-R, invisible track asked", loaded(small(MediaKind::DvdMinusR, DiscStatus::Complete, 400)), 1, 0xFF, 0, {1, 1, 0, false, 0, 0, 400, false}},
        {"full appendable DVD+R", loaded(small(MediaKind::DvdPlusR, DiscStatus::Appendable, kCapacity)), 1, 0xFF, 0, {2, 2, 1000, false, 0, 0, 0, true}},
        {"DVD-R being written", [](WriterTest& t) {
             t.loadWritable(MediaKind::DvdMinusR, kCapacity);
             EXPECT_EQ(t.write(0, 16, 1), 0u);
         }, 1, 0xFF, 0, {1, 1, 0, true, 16, 984, 1000, false}},
        {"CD-R after closing a track", closedCdTrack, 1, 0xFF, 0, {2, 1, 10, true, 10, 990, 990, true}},
        {"CD-R after closing a track, track 1", closedCdTrack, 1, 1, 0, {1, 1, 0, false, 0, 0, 10, false}},
        {"unformatted DVD+RW", loaded(small(MediaKind::DvdPlusRw)), 1, 0xFF, 0, {1, 1, 0, false, 0, 1000, 1000, true}},
        {"formatted DVD+RW", loaded(small(MediaKind::DvdPlusRw, DiscStatus::Complete)), 1, 0xFF, 0, {1, 1, 0, false, 0, 1000, 1000, false}},
        {"formatted DVD-RAM by LBA", loaded(small(MediaKind::DvdRam, DiscStatus::Complete)), 0, 500, 0, {1, 1, 0, false, 0, 1000, 1000, false}},
        {"formatted BD-RE", loaded(small(MediaKind::BdRe, DiscStatus::Complete)), 1, 1, 0, {1, 1, 0, false, 0, 1000, 1000, false}},
        {"DVD-ROM", loaded(small(MediaKind::DvdRom)), 1, 0xFF, 0, {1, 1, 0, false, 0, 0, 1000, false}},
        {"no disc", [](WriterTest& t) { t.writer->removeDisc(); }, 1, 0xFF, 0x3A02, {}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        row.load(*this);
        const Answer answer = trackInformation(row.type, row.address);
        ASSERT_EQ(answer.status, row.status);
        if (row.status != 0) continue;
        const auto track = decoded(answer);
        ASSERT_TRUE(track);
        EXPECT_EQ(fieldsOf(*track), row.expected);
    }
}

TEST_F(WriterTest, TrackInformationDescribesHowEachFamilyRecords) {
    const struct {
        MediaKind kind;
        uint8_t trackMode;
        uint8_t dataMode;
        bool packet;
        uint32_t blockingFactor;
    } rows[] = {
        {MediaKind::CdR, 4, 0x0F, false, 0},
        {MediaKind::DvdPlusR, 5, 1, true, 16},
        {MediaKind::BdR, 5, 1, true, 32},
        {MediaKind::DvdRom, 4, 1, false, 16},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        loadReady(sim::mmc::discOf(row.kind));
        const auto track = decoded(trackInformation(1, 0xFF));
        ASSERT_TRUE(track);
        EXPECT_EQ(track->trackMode, row.trackMode);
        EXPECT_EQ(track->dataMode, row.dataMode);
        EXPECT_EQ(track->packet, row.packet);
        EXPECT_EQ(track->fixedPacket, row.packet);
        EXPECT_EQ(track->fixedPacketSize, row.blockingFactor);
    }
}

TEST_F(WriterTest, WriteSpeedsComeFromTheDiscFastestFirst) {
    const struct {
        MediaKind kind;
        std::vector<uint32_t> speeds;
        uint32_t readSpeed;
    } rows[] = {
        {MediaKind::CdR, {8467, 7056, 5645, 4234, 2822}, 8467},
        {MediaKind::CdRw, {4234, 2822, 1764, 706}, 8467},
        {MediaKind::DvdPlusR, {22160, 16620, 11080, 5540}, 22160},
        {MediaKind::BdRe, {8990, 4495}, 35960},
        {MediaKind::HdDvdRw, {4568}, 13704},
        {MediaKind::DvdRom, {}, 0},
    };
    for (const auto& row : rows) {
        const DiscModel disc = sim::mmc::discOf(row.kind);
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        loadReady(disc);
        const Answer answer = writeSpeeds(8);
        ASSERT_EQ(answer.status, 0u);
        EXPECT_EQ(answer.received, 8 + 16 * row.speeds.size());
        std::vector<uint32_t> speeds;
        for (const auto& d : kivscsi::decodeWriteSpeedDescriptors(answer.data(), answer.received)) {
            speeds.push_back(d.writeSpeed);
            EXPECT_EQ(d.endLba, disc.capacitySectors - 1);
            EXPECT_EQ(d.readSpeed, row.readSpeed);
        }
        EXPECT_EQ(speeds, row.speeds);
    }
}

TEST_F(WriterTest, WriteSpeedsAreCutToTheDescriptorsAskedForAndNeedADisc) {
    loadReady(sim::mmc::discOf(MediaKind::CdR));
    const Answer two = writeSpeeds(2);
    ASSERT_EQ(two.status, 0u);
    const auto speeds = kivscsi::decodeWriteSpeedDescriptors(two.data(), two.received);
    ASSERT_EQ(speeds.size(), 2u);
    EXPECT_EQ(speeds[0].writeSpeed, 8467u);
    EXPECT_EQ(speeds[1].writeSpeed, 7056u);
    const Answer cut = writeSpeeds(8, 30);
    ASSERT_EQ(cut.status, 0u);
    EXPECT_EQ(kivscsi::decodeWriteSpeedDescriptors(cut.data(), cut.received).size(), 1u);

    writer->removeDisc();
    EXPECT_EQ(writeSpeeds(8).status, 0x3A02u);
    writer->pressEjectButton();
    EXPECT_EQ(writeSpeeds(8).status, 0x3A01u);
}

}  // namespace
}  // namespace mmctest

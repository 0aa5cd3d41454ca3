// READ TRACK INFORMATION and GET PERFORMANCE as the emulated writer answers them from its disc,
// read through the SCSI library's commands and decoders.
#include <functional>
#include <optional>

#include "WriterFixture.h"

namespace mmctest {
namespace {

using sim::mmc::DiscStatus;

constexpr uint32_t kCapacity = 1000;

struct TrackAnswer {
    Status status = 0;
    std::optional<kivscsi::TrackInformation> track;
};

TrackAnswer trackInformation(const _SCSI_PATH& path, uint8_t type, uint32_t address) {
    Bytes answer(64, 0);
    uint32_t received = 0;
    TrackAnswer result;
    result.status =
        kivscsi::ReadTrackInformation(path, kDevice, type, address, answer.data(), 64, &received);
    if (result.status == 0) result.track = kivscsi::decodeTrackInformation(answer.data(), received);
    return result;
}

DiscModel small(MediaKind kind, DiscStatus status = DiscStatus::Blank, uint32_t recorded = 0) {
    DiscModel disc = sim::mmc::discOf(kind);
    disc.capacitySectors = kCapacity;
    if (disc.status != DiscStatus::Complete) disc.status = status;
    if (disc.status == DiscStatus::Complete && recorded == 0) recorded = kCapacity;
    disc.recordedSectors = recorded;
    return disc;
}

struct Expected {
    uint16_t track;
    uint16_t session;
    uint32_t start;
    bool nwaValid;
    uint32_t nwa;
    uint32_t freeBlocks;
    uint32_t size;
    bool blank;
};

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
        {"CD-R after closing a track", [](WriterTest& t) {
             t.loadWritable(MediaKind::CdR, kCapacity);
             EXPECT_EQ(t.write(0, 10, 1), 0u);
             EXPECT_EQ(kivscsi::CloseTrack(t.path, kDevice), 0u);
         }, 1, 0xFF, 0, {2, 1, 10, true, 10, 990, 990, true}},
        {"CD-R after closing a track, track 1", [](WriterTest& t) {
             t.loadWritable(MediaKind::CdR, kCapacity);
             EXPECT_EQ(t.write(0, 10, 1), 0u);
             EXPECT_EQ(kivscsi::CloseTrack(t.path, kDevice), 0u);
         }, 1, 1, 0, {1, 1, 0, false, 0, 0, 10, false}},
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
        const TrackAnswer answer = trackInformation(path, row.type, row.address);
        ASSERT_EQ(answer.status, row.status);
        if (row.status != 0) continue;
        ASSERT_TRUE(answer.track);
        const kivscsi::TrackInformation& t = *answer.track;
        EXPECT_EQ(t.trackNumber, row.expected.track);
        EXPECT_EQ(t.sessionNumber, row.expected.session);
        EXPECT_EQ(t.trackStart, row.expected.start);
        EXPECT_EQ(t.nextWritableValid, row.expected.nwaValid);
        EXPECT_EQ(t.nextWritableAddress, row.expected.nwa);
        EXPECT_EQ(t.freeBlocks, row.expected.freeBlocks);
        EXPECT_EQ(t.trackSize, row.expected.size);
        EXPECT_EQ(t.blank, row.expected.blank);
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
        const TrackAnswer answer = trackInformation(path, 1, 0xFF);
        ASSERT_TRUE(answer.track);
        EXPECT_EQ(answer.track->trackMode, row.trackMode);
        EXPECT_EQ(answer.track->dataMode, row.dataMode);
        EXPECT_EQ(answer.track->packet, row.packet);
        EXPECT_EQ(answer.track->fixedPacket, row.packet);
        EXPECT_EQ(answer.track->fixedPacketSize, row.blockingFactor);
    }
}

TEST_F(WriterTest, AFullAndAClosedDiscRefuseWritesWhereRealMediaDo) {
    struct Row {
        const char* name;
        DiscModel disc;
        uint32_t lba;
        Status writeStatus;
        uint8_t discStatus;
    };
    const std::vector<Row> rows = {
        {"full, appendable", small(MediaKind::DvdPlusR, DiscStatus::Appendable, kCapacity), 1000,
         0x2100, 1},
        {"closed", small(MediaKind::DvdPlusR, DiscStatus::Complete, 400), 400, 0x2102, 2},
        {"room left", small(MediaKind::DvdPlusR, DiscStatus::Appendable, 400), 400, 0, 1},
        {"room left, not at the next writable address",
         small(MediaKind::DvdPlusR, DiscStatus::Appendable, 400), 416, 0x2102, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        loadReady(row.disc);
        EXPECT_EQ(write(row.lba, 16, 0x11), row.writeStatus);
        EXPECT_EQ(discInformation().discStatus, row.discStatus);
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
        {MediaKind::BdRom, {}, 0},
    };
    for (const auto& row : rows) {
        const DiscModel disc = sim::mmc::discOf(row.kind);
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        loadReady(disc);
        Bytes answer(8 + 16 * 8, 0);
        uint32_t received = 0;
        ASSERT_EQ(
            kivscsi::GetWriteSpeedPerformance(path, kDevice, 8, answer.data(),
                                              static_cast<uint16_t>(answer.size()), &received),
            0u);
        EXPECT_EQ(received, 8 + 16 * row.speeds.size());
        std::vector<uint32_t> speeds;
        for (const auto& d : kivscsi::decodeWriteSpeedDescriptors(answer.data(), received)) {
            speeds.push_back(d.writeSpeed);
            EXPECT_EQ(d.endLba, disc.capacitySectors - 1);
            EXPECT_EQ(d.readSpeed, row.readSpeed);
        }
        EXPECT_EQ(speeds, row.speeds);
    }
}

TEST_F(WriterTest, WriteSpeedsAreCutToTheDescriptorsAskedForAndNeedADisc) {
    loadReady(sim::mmc::discOf(MediaKind::CdR));
    Bytes answer(8 + 16 * 8, 0);
    uint32_t received = 0;
    ASSERT_EQ(kivscsi::GetWriteSpeedPerformance(path, kDevice, 2, answer.data(), 136, &received),
              0u);
    const auto two = kivscsi::decodeWriteSpeedDescriptors(answer.data(), received);
    ASSERT_EQ(two.size(), 2u);
    EXPECT_EQ(two[0].writeSpeed, 8467u);
    EXPECT_EQ(two[1].writeSpeed, 7056u);
    ASSERT_EQ(kivscsi::GetWriteSpeedPerformance(path, kDevice, 8, answer.data(), 30, &received),
              0u);
    EXPECT_EQ(kivscsi::decodeWriteSpeedDescriptors(answer.data(), received).size(), 1u);

    writer->removeDisc();
    EXPECT_EQ(kivscsi::GetWriteSpeedPerformance(path, kDevice, 8, answer.data(), 136), 0x3A02u);
    writer->pressEjectButton();
    EXPECT_EQ(kivscsi::GetWriteSpeedPerformance(path, kDevice, 8, answer.data(), 136), 0x3A01u);
}

}  // namespace
}  // namespace mmctest

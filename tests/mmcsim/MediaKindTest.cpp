// Per media kind: the profile the drive reports, the disc's status and erasable flag out of
// the box, the identification bytes the optical drive reads, ATIP times and copy protection.
#include <string>
#include <tuple>

#include "WriterFixture.h"

namespace mmctest {
namespace {

using sim::mmc::discOf;

struct KindRow {
    MediaKind kind;
    uint16_t profile;
    uint8_t discStatus;  // as delivered: 0 blank, 2 complete
    bool erasable;
};

const KindRow kKinds[] = {
    {MediaKind::CdRom, 0x0008, 2, false},
    {MediaKind::CdR, 0x0009, 0, false},
    {MediaKind::CdRw, 0x000A, 0, true},
    {MediaKind::DvdRom, 0x0010, 2, false},
    {MediaKind::DvdMinusR, 0x0011, 0, false},
    {MediaKind::DvdMinusRw, 0x0014, 0, true},
    {MediaKind::DvdMinusRDualLayer, 0x0015, 0, false},
    {MediaKind::DvdPlusR, 0x001B, 0, false},
    {MediaKind::DvdPlusRw, 0x001A, 0, true},
    {MediaKind::DvdPlusRDualLayer, 0x002B, 0, false},
    {MediaKind::DvdRam, 0x0012, 0, true},
    {MediaKind::BdRom, 0x0040, 2, false},
    {MediaKind::BdR, 0x0041, 0, false},
    {MediaKind::BdRe, 0x0043, 0, true},
    {MediaKind::HdDvdRom, 0x0050, 2, false},
    {MediaKind::HdDvdR, 0x0051, 0, false},
    {MediaKind::HdDvdRw, 0x0053, 0, true},
    {MediaKind::HdDvdRam, 0x0052, 0, true},
};

TEST_F(WriterTest, EveryKindReportsItsProfileStatusAndErasableFlag) {
    ASSERT_EQ(std::size(kKinds), sim::mmc::allMediaKinds().size());
    for (const KindRow& row : kKinds) {
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        loadReady(discOf(row.kind));
        ASSERT_EQ(testUnitReady(), 0u);
        EXPECT_EQ(currentProfile(), row.profile);

        const Answer answer = configuration(0);
        ASSERT_EQ(answer.status, 0u);
        int currentEntries = 0;
        for (const auto& entry : kivscsi::decodeProfileList(answer.data(), answer.received)) {
            if (entry.current) {
                ++currentEntries;
                EXPECT_EQ(entry.profile, row.profile);
            }
        }
        EXPECT_EQ(currentEntries, 1);

        const auto info = discInformation();
        EXPECT_EQ(info.discStatus, row.discStatus);
        EXPECT_EQ(info.erasable, row.erasable);
    }
}

// The current profile and the Real Time Streaming feature (0107h, asked for alone as the
// optical drive does) are current only while a disc is ready.
TEST_F(WriterTest, ProfileAndStreamingFeatureFollowTheReadyDisc) {
    const struct {
        const char* step;
        bool insert;
        uint32_t advanceMs;
        uint16_t profile;
        bool streamingCurrent;
    } rows[] = {
        {"empty", false, 0, 0, false},
        {"spinning up", true, 0, 0, false},
        {"ready", false, kSpinUpMs, 0x0041, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step);
        if (row.insert) writer->insertDisc(discOf(MediaKind::BdR));
        clock.advance(row.advanceMs);
        EXPECT_EQ(currentProfile(), row.profile);
        const Answer answer = configuration(0x0107, 16);
        ASSERT_EQ(answer.status, 0u);
        ASSERT_EQ(answer.received, 16u);
        const auto feature = kivscsi::findFeature(answer.data(), answer.received, 0x0107);
        ASSERT_TRUE(feature.has_value());
        EXPECT_EQ(feature->current, row.streamingCurrent);
        EXPECT_EQ(answer.bytes[12], sim::mmc::WriterConfig{}.realTimeStreamingFlags);
    }
}

struct IdRow {
    MediaKind kind;
    Status adipStatus;      // ReadDvdStructure format 0x11
    Status physicalStatus;  // ReadDvdStructure format 0x00
    Status bdStatus;        // ReadBdStructure format 0x00
};

const IdRow kIdRows[] = {
    {MediaKind::DvdPlusR, 0, 0, 0x3002},          {MediaKind::DvdPlusRw, 0, 0, 0x3002},
    {MediaKind::DvdPlusRDualLayer, 0, 0, 0x3002}, {MediaKind::DvdMinusR, 0x2400, 0, 0x3002},
    {MediaKind::HdDvdR, 0x2400, 0, 0x3002},       {MediaKind::BdR, 0x3002, 0x3002, 0},
    {MediaKind::CdR, 0x3002, 0x3002, 0x3002},
};

// The manufacturer and disc ids an identification structure carries, joined by a blank.
std::string ids(const Answer& a, bool bd) {
    return bd ? kivscsi::decodeBdManufacturerId(a.data(), a.received) + " " +
                    kivscsi::decodeBdDiscId(a.data(), a.received)
              : kivscsi::decodeDvdManufacturerId(a.data(), a.received) + " " +
                    kivscsi::decodeDvdDiscId(a.data(), a.received);
}

TEST_F(WriterTest, IdentificationStructuresCarryTheDiscIdsWhereTheKindHasThem) {
    for (const IdRow& row : kIdRows) {
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        DiscModel disc = discOf(row.kind);
        disc.manufacturerId = "MAKER";
        disc.discId = "Q7";
        loadReady(disc);

        const Answer adip = dvdStructure(0x11), physical = dvdStructure(0x00), bd = bdStructure();
        EXPECT_EQ(adip.status, row.adipStatus);
        EXPECT_EQ(physical.status, row.physicalStatus);
        EXPECT_EQ(bd.status, row.bdStatus);
        if (row.adipStatus == 0) {
            EXPECT_EQ(ids(adip, false), "MAKER Q7");
        }
        if (row.physicalStatus == 0) {
            EXPECT_EQ(physical.received, 256u);  // cut to the allocation, not the 2048 bytes
            EXPECT_EQ(ids(physical, false), "MAKER Q7");
        }
        if (row.bdStatus == 0) {
            EXPECT_EQ(ids(bd, true), "MAKER Q7");
        }
    }
}

TEST_F(WriterTest, IdsFillTheirFieldsExactlyAndNeverSpillIntoTheNext) {
    const struct {
        MediaKind kind;
        std::string manufacturer, expectedManufacturer;
    } rows[] = {
        {MediaKind::DvdPlusR, "ABCDEFGH", "ABCDEFGH"},
        {MediaKind::DvdPlusR, "ABCDEFGHIJ", "ABCDEFGH"},
        {MediaKind::BdR, "ABCDEF", "ABCDEF"},
        {MediaKind::BdR, "ABCDEFGH", "ABCDEF"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.manufacturer);
        DiscModel disc = discOf(row.kind);
        disc.manufacturerId = row.manufacturer;
        disc.discId = "XYZW";
        loadReady(disc);
        const bool bd = row.kind == MediaKind::BdR;
        const Answer answer = bd ? bdStructure() : dvdStructure(0x11);
        ASSERT_EQ(answer.status, 0u);
        EXPECT_EQ(ids(answer, bd), row.expectedManufacturer + " XYZ");
    }
}

template <typename Time>
std::tuple<int, int, int> msf(const Time& t) {
    return {t.minutes, t.seconds, t.frames};
}

TEST_F(WriterTest, AtipGivesTheLeadInAndLeadOutOfRecordableCdsOnly) {
    const struct {
        MediaKind kind;
        sim::mmc::Msf leadIn, leadOut;
        Status expected;
    } rows[] = {
        {MediaKind::CdR, {97, 26, 66}, {79, 59, 74}, 0},
        {MediaKind::CdRom, {}, {}, 0x2400},
        {MediaKind::DvdPlusR, {}, {}, 0x2400},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        DiscModel disc = discOf(row.kind);
        disc.leadIn = row.leadIn;
        disc.leadOut = row.leadOut;
        loadReady(disc);
        const Answer answer = atip();
        ASSERT_EQ(answer.status, row.expected);
        if (row.expected != 0) continue;
        const auto times = kivscsi::decodeAtip(answer.data(), answer.received);
        ASSERT_TRUE(times.has_value());
        EXPECT_EQ(msf(times->leadInStart), msf(row.leadIn));
        EXPECT_EQ(msf(times->leadOutStart), msf(row.leadOut));
    }
}

TEST_F(WriterTest, CopyrightStructureReportsTheProtectionType) {
    for (const uint8_t protection : {uint8_t{0}, uint8_t{1}, uint8_t{2}}) {
        DiscModel disc = discOf(MediaKind::DvdRom);
        disc.copyProtection = protection;
        loadReady(disc);
        const Answer answer = dvdStructure(0x01, 512);
        ASSERT_EQ(answer.status, 0u);
        EXPECT_EQ(kivscsi::decodeCopyProtectionType(answer.data(), answer.received), protection);
    }
}

}  // namespace
}  // namespace mmctest

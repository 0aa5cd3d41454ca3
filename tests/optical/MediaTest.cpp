// Profiles and media kinds, the required disc, disc status, geometry, protection and features.
#include <cstring>
#include <functional>
#include <optional>

#include "OpticalDriveFixture.h"
#include "libDrive/Exceptions.h"
#include "scsi/Opcodes.h"

namespace optest {
namespace {

namespace op = kivscsi::opcode;
using kivrlibdrive::MediaType;

sim::mmc::DiscModel withProfile(MediaKind kind, uint16_t profile) {
    sim::mmc::DiscModel disc = sim::mmc::discOf(kind);
    disc.profile = profile;
    return disc;
}

TEST_F(OpticalDriveTest, ProfilesMapToMediaTypesAndOnlyDoubleLayerPredicatesAsk) {
    using enum MediaKind;
    using namespace kivrlibdrive;
    const std::pair<sim::mmc::DiscModel, MediaType> cases[] = {
        {withProfile(CdR, 0x0009), MEDIA_CDR},
        {withProfile(DvdMinusRDualLayer, 0x0016), MEDIA_DVDMINUSR_DL},
        {withProfile(DvdMinusRw, 0x0014), MEDIA_DVDMINUSRW},
        {withProfile(DvdPlusR, 0x001B), MEDIA_DVDPLUSR},
        {withProfile(DvdPlusRDualLayer, 0x002B), MEDIA_DVDPLUSR_DL},
        {withProfile(BdR, 0x0042), MEDIA_BDR},
        {withProfile(HdDvdRw, 0x0053), MEDIA_HDDVDRW},
        {withProfile(HdDvdRam, 0x0052), MEDIA_HDDVDRAM},
        {withProfile(DvdRam, 0x0012), MEDIA_DVDRAM},
        {withProfile(DvdPlusR, 0x0018), MEDIA_UNKNOWN},
    };
    for (const auto& [disc, type] : cases) {
        SCOPED_TRACE(disc.profile);
        loadReady(disc);
        EXPECT_EQ(drive->getCurrentMediaType(), type);
        EXPECT_EQ(drive->DvdminusrDLDisc(), type == MEDIA_DVDMINUSR_DL);
        EXPECT_EQ(drive->DvdplusrDLDisc(), type == MEDIA_DVDPLUSR_DL);
        EXPECT_FALSE(drive->DvdplusrDisc() || drive->CDRDisc() || drive->BdrDisc());
        EXPECT_EQ(drive->getTotalSectorsOnMedia(), 2000000u);
    }
    fail(op::kGetConfiguration, 0x4400, 1);
    EXPECT_EQ(drive->getCurrentMediaType(), MEDIA_UNKNOWN);
}

struct RequiredCase {
    const char* name;
    sim::mmc::DiscModel disc;
    std::vector<unsigned short> required;
    bool answer, found;
    size_t configurationCommands;
    uint64_t elapsedMs;
};

TEST_F(OpticalDriveTest, RequiredDiscAsksThreeTimesAndGatesThePassCondition) {
    const auto dvd = sim::mmc::discOf(MediaKind::DvdPlusR);
    const RequiredCase cases[] = {
        {"nothing required", dvd, {}, false, false, 3, 1000},
        {"current profile required", dvd, {0x0011, 0x001B}, true, true, 1, 0},
        {"listed but not current", dvd, {0x0011}, false, false, 3, 1000},
        // A current profile the drive does not list answers true but finds nothing.
        {"current, unlisted", withProfile(MediaKind::DvdPlusR, 0x18), {0x18}, true, false, 1, 0},
    };
    for (const RequiredCase& c : cases) {
        SCOPED_TRACE(c.name);
        loadReady(c.disc);
        drive->requiredProfiles = kiv::Array<unsigned short>();
        for (unsigned short profile : c.required) drive->requiredProfiles.add(profile);
        writer->clearHistory();
        host.clear();
        const uint64_t start = elapsedMs();

        EXPECT_EQ(drive->requiredDisc(), c.answer);
        EXPECT_EQ(drive->requiredMediaFound, c.found);
        EXPECT_EQ(commands(op::kGetConfiguration).size(), c.configurationCommands);
        EXPECT_EQ(elapsedMs() - start, c.elapsedMs);
        EXPECT_EQ(drive->getPASSCondition(true),
                  c.found ? quel5::TestResult::PASS : quel5::TestResult::WARN);
        EXPECT_EQ(drive->getPASSCondition(false), quel5::TestResult::PASS);
        const auto events = host.events();
        ASSERT_EQ(events.size(), c.found ? 0u : 2u);
        for (const auto& event : events) {
            EXPECT_EQ(event.key, "CURRENT_PROFILE_NOT_SET");
            EXPECT_EQ(event.severity, quel5::Severity::WARNING);
            EXPECT_EQ(event.source, kSource);
            EXPECT_EQ(event.line, 1753);
        }
    }
}

TEST_F(OpticalDriveTest, DiscStatusFromTheDiscInformation) {
    const std::tuple<std::optional<MediaKind>, bool, bool> cases[] = {
        {MediaKind::DvdPlusR, true, false},
        {MediaKind::DvdRom, false, true},
        {std::nullopt, false, false},  // no disc
    };
    for (const auto& [kind, empty, complete] : cases) {
        writer->removeDisc();
        if (kind) loadReady(*kind);
        EXPECT_EQ(drive->emptyDisc(), empty);
        EXPECT_EQ(drive->completeDisc(), complete);
    }
    EXPECT_EQ(logged(3), (std::vector<std::string>{"449 Failed ReadDiscInformaton "}));
    EXPECT_EQ(logged(4), (std::vector<std::string>{"538 Failed ReadDiscInformaton "}));
    EXPECT_EQ(
        thrownStatus<kivrlibdrive::TestFailedException>([&] { drive->getBGFormatInformation(); }),
        0x3A02u);
}

TEST_F(OpticalDriveTest, DiscInformationPageParsedFromThirtyBytesOn) {
    // Length field, then whether the block is taken, and bytes 32 and 33 as parsed.
    const std::tuple<uint16_t, bool, uint8_t, uint8_t> cases[] = {
        {29, false, 0, 0}, {30, true, 0, 0}, {31, true, 0xA5, 0}, {800, true, 0xA5, 0x07}};
    for (const auto& [length, taken, byte32, byte33] : cases) {
        SCOPED_TRACE(length);
        uint8_t raw[34];
        for (size_t i = 0; i < sizeof(raw); ++i) raw[i] = static_cast<uint8_t>(i + 1);
        raw[0] = static_cast<uint8_t>(length >> 8);
        raw[1] = static_cast<uint8_t>(length);
        raw[32] = 0xA5;
        raw[33] = 0x07;
        kivrlibdrive::CDRRDiskInformation info;
        std::memset(&info, 0xEE, sizeof(info));
        drive->parseDiskInfoPage(raw, &info);
        EXPECT_EQ(uint16_t{info.dataLength}, taken ? length : 0);
        EXPECT_EQ(info.flags, taken ? 8 : 0);
        EXPECT_EQ(uint32_t{info.discIdentification}, taken ? 0x0D0E0F10u : 0u);
        EXPECT_EQ(uint32_t{info.lastSessionLeadInStart}, taken ? 0x11121314u : 0u);
        EXPECT_EQ(uint32_t{info.lastPossibleLeadOutStart}, taken ? 0x15161718u : 0u);
        EXPECT_EQ(info.discApplicationCode, byte32);
        EXPECT_EQ(info.numberOfOpcTables, byte33);
    }
}

struct GeometryCase {
    const char* name;
    std::function<void(OpticalDriveTest&)> setup;
    const char* error;
    unsigned long bytesPerSector;
    bool fromCapacity;  // the system could not answer: one cylinder of one-sector tracks
};

TEST_F(OpticalDriveTest, GeometryFromTheSystemElseFromTheCapacity) {
    const auto insert = [](OpticalDriveTest& t) {
        t.writer->insertDisc(sim::mmc::discOf(MediaKind::DvdRom));
    };
    const GeometryCase cases[] = {
        {"ready", [](OpticalDriveTest& t) { t.loadReady(MediaKind::DvdRom); }, "", 2048, false},
        // Not ready for the system's query; START waits for the disc, then its capacity counts.
        {"spinning up", insert, "", 2048, true},
        {"no disc", [](OpticalDriveTest&) {},
         " No media present: No media present so cannot obtain drive geometry", 0, false},
        {"capacity unreadable",
         [insert](OpticalDriveTest& t) {
             insert(t);
             t.fail(op::kReadCapacity, 0x4400);
         },
         "There was problem getting drive geometry", 2048, false},
    };
    const uint32_t capacity = sim::mmc::discOf(MediaKind::DvdRom).capacitySectors;
    for (const GeometryCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        writer->removeDisc();
        writer->pressEjectButton();
        drive = std::make_unique<HostDrive>(device);
        c.setup(*this);
        EXPECT_EQ(thrownMessage<kiv::Exception>([&] { drive->getDriveGeometry(); }), c.error);
        EXPECT_EQ(drive->getBytesPerSector(), c.bytesPerSector);
        const auto& g = drive->diskGeometry();
        EXPECT_EQ(drive->totalSectors,
                  uint64_t(g.Cylinders) * g.TracksPerCylinder * g.SectorsPerTrack);
        if (c.fromCapacity) {
            EXPECT_EQ(g.Cylinders * g.SectorsPerTrack, 1);
            EXPECT_EQ(drive->totalSectors, capacity - 1);  // READ CAPACITY's last address
        }
    }
}

TEST_F(OpticalDriveTest, CopyProtectionAskedOfDvdAndHdDvdKindsOnly) {
    // Kind, CPST, structure refused, answer, structure reads, the log line.
    const std::tuple<MediaKind, uint8_t, bool, bool, size_t, const char*> cases[] = {
        {MediaKind::DvdRom, 1, false, true, 1, "499 DVD/HD-DVD Disc is copy protected\n"},
        {MediaKind::HdDvdRom, 0, false, false, 1, "504 DVD/HD-DVD Disc is not copy protected\n"},
        {MediaKind::DvdRam, 1, false, false, 0, nullptr},
        {MediaKind::CdRom, 1, false, false, 0, nullptr},
        {MediaKind::DvdRom, 1, true, false, 1,
         "508 Unable to identify if disc is copy protected\n"},
    };
    for (const auto& [kind, protection, refused, answer, reads, line] : cases) {
        sim::mmc::DiscModel disc = sim::mmc::discOf(kind);
        disc.copyProtection = protection;
        loadReady(disc);
        if (refused) fail(op::kReadDiscStructure, 0x2400, 1);
        writer->clearHistory();
        clearLog();
        EXPECT_EQ(drive->isMediaCopyProtected(), answer);
        EXPECT_EQ(commands(op::kReadDiscStructure).size(), reads);
        std::vector<std::string> lines = logged(refused ? 4 : 1);
        EXPECT_EQ(lines, line ? std::vector<std::string>{line} : std::vector<std::string>{});
    }
}

TEST_F(OpticalDriveTest, RealTimeStreamingFeatureStaysReachableFromASubclass) {
    loadReady(MediaKind::DvdPlusR);
    unsigned char flags = 0;
    EXPECT_TRUE(drive->getRealTimeStreamingFeature(flags));
    EXPECT_EQ(flags, 0x1F);
    fail(op::kGetConfiguration, 0x2400, 1);
    flags = 0;
    EXPECT_FALSE(drive->getRealTimeStreamingFeature(flags));
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(logged(4), (std::vector<std::string>{"1782 Failed getting the configuration for the "
                                                   "Real Time Streaming Feature. status = 9216"}));
}

}  // namespace
}  // namespace optest

// Profiles and media kinds, the required disc, disc status, geometry, protection and features.
#include <cstring>
#include <optional>

#include "OpticalDriveFixture.h"
#include "libDrive/Exceptions.h"
#include "sim/mmc/Opcodes.h"

namespace optest {
namespace {

namespace op = sim::mmc::opcode;
using kivrlibdrive::MediaType;

sim::mmc::DiscModel withProfile(MediaKind kind, uint16_t profile) {
    sim::mmc::DiscModel disc = sim::mmc::discOf(kind);
    disc.profile = profile;
    return disc;
}

struct ProfileCase {
    sim::mmc::DiscModel disc;
    MediaType type;
};

TEST_F(OpticalDriveTest, EveryProfileMapsToItsMediaTypeAndOnlyDoubleLayerPredicatesAsk) {
    using enum MediaKind;
    const ProfileCase cases[] = {
        {sim::mmc::discOf(CdRom), kivrlibdrive::MEDIA_CDROM},
        {sim::mmc::discOf(CdR), kivrlibdrive::MEDIA_CDR},
        {sim::mmc::discOf(CdRw), kivrlibdrive::MEDIA_CDRW},
        {sim::mmc::discOf(DvdRom), kivrlibdrive::MEDIA_DVDROM},
        {sim::mmc::discOf(DvdMinusR), kivrlibdrive::MEDIA_DVDMINUSR},
        {sim::mmc::discOf(DvdMinusRDualLayer), kivrlibdrive::MEDIA_DVDMINUSR_DL},
        {withProfile(DvdMinusRDualLayer, 0x0016), kivrlibdrive::MEDIA_DVDMINUSR_DL},
        {withProfile(DvdMinusRw, 0x0013), kivrlibdrive::MEDIA_DVDMINUSRW},
        {withProfile(DvdMinusRw, 0x0014), kivrlibdrive::MEDIA_DVDMINUSRW},
        {sim::mmc::discOf(DvdPlusR), kivrlibdrive::MEDIA_DVDPLUSR},
        {sim::mmc::discOf(DvdPlusRDualLayer), kivrlibdrive::MEDIA_DVDPLUSR_DL},
        {sim::mmc::discOf(DvdPlusRw), kivrlibdrive::MEDIA_DVDPLUSRW},
        {sim::mmc::discOf(BdRom), kivrlibdrive::MEDIA_BDROM},
        {withProfile(BdR, 0x0041), kivrlibdrive::MEDIA_BDR},
        {withProfile(BdR, 0x0042), kivrlibdrive::MEDIA_BDR},
        {sim::mmc::discOf(BdRe), kivrlibdrive::MEDIA_BDRE},
        {sim::mmc::discOf(HdDvdRom), kivrlibdrive::MEDIA_HDDVDROM},
        {sim::mmc::discOf(HdDvdR), kivrlibdrive::MEDIA_HDDVDR},
        {withProfile(HdDvdRw, 0x0053), kivrlibdrive::MEDIA_HDDVDRW},
        {withProfile(HdDvdRam, 0x0052), kivrlibdrive::MEDIA_HDDVDRAM},
        {sim::mmc::discOf(DvdRam), kivrlibdrive::MEDIA_DVDRAM},
        {withProfile(DvdPlusR, 0x0018), kivrlibdrive::MEDIA_UNKNOWN},
    };
    for (const ProfileCase& c : cases) {
        SCOPED_TRACE(c.disc.profile);
        loadReady(c.disc);
        EXPECT_EQ(drive->getCurrentProfile(), c.disc.profile);
        EXPECT_EQ(drive->getCurrentMediaType(), c.type);
        EXPECT_EQ(drive->DvdminusrDLDisc(), c.type == kivrlibdrive::MEDIA_DVDMINUSR_DL);
        EXPECT_EQ(drive->DvdplusrDLDisc(), c.type == kivrlibdrive::MEDIA_DVDPLUSR_DL);
        EXPECT_FALSE(drive->DvdplusrDisc() || drive->CDRDisc() || drive->BdreDisc() ||
                     drive->DvdminusrwDisc() || drive->RWDisc());
        EXPECT_EQ(drive->getTotalSectorsOnMedia(), 2000000u);
    }
    fail(op::kGetConfiguration, 0x4400, 1);
    EXPECT_EQ(drive->getCurrentMediaType(), kivrlibdrive::MEDIA_UNKNOWN);
    fail(op::kGetConfiguration, 0x4400, 1);
    try {
        drive->getCurrentProfile();
        ADD_FAILURE() << "no exception";
    } catch (const kivrlibdrive::FailedGettingCurrentProfile& failure) {
        EXPECT_EQ(failure.getStatus(), 0x4400u);
    }
}

struct RequiredCase {
    const char* name;
    sim::mmc::DiscModel disc;
    std::vector<unsigned short> required;
    bool configurationFails;
    bool answer;
    bool found;
    size_t configurationCommands;
    uint64_t elapsedMs;
};

TEST_F(OpticalDriveTest, RequiredDiscAsksThreeTimesAndGatesThePassCondition) {
    const RequiredCase cases[] = {
        {"nothing required",
         sim::mmc::discOf(MediaKind::DvdPlusR),
         {},
         false,
         false,
         false,
         3,
         1000},
        {"current profile required",
         sim::mmc::discOf(MediaKind::DvdPlusR),
         {0x0011, 0x001B},
         false,
         true,
         true,
         1,
         0},
        {"listed but not current",
         sim::mmc::discOf(MediaKind::DvdPlusR),
         {0x0011},
         false,
         false,
         false,
         3,
         1000},
        // A current profile the drive does not list answers true but finds nothing.
        {"current but unlisted",
         withProfile(MediaKind::DvdPlusR, 0x0018),
         {0x0018},
         false,
         true,
         false,
         1,
         0},
        {"configuration refused",
         sim::mmc::discOf(MediaKind::DvdPlusR),
         {0x001B},
         true,
         false,
         false,
         3,
         1000},
    };
    for (const RequiredCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        loadReady(c.disc);
        if (c.configurationFails) fail(op::kGetConfiguration, 0x4400);
        drive->requiredProfiles.clear();
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

struct DiscStatusCase {
    const char* name;
    std::optional<MediaKind> kind;  // none: no disc
    bool empty;
    bool complete;
};

TEST_F(OpticalDriveTest, DiscStatusFromTheDiscInformation) {
    const DiscStatusCase cases[] = {
        {"blank DVD+R", MediaKind::DvdPlusR, true, false},
        {"pressed DVD", MediaKind::DvdRom, false, true},
        {"formatted BD-RE", MediaKind::BdRe, false, true},
        {"no disc", std::nullopt, false, false},
    };
    for (const DiscStatusCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->removeDisc();
        if (c.kind) loadReady(*c.kind);
        EXPECT_EQ(drive->emptyDisc(), c.empty);
        EXPECT_EQ(drive->completeDisc(), c.complete);
    }
    EXPECT_EQ(logged(3), (std::vector<std::string>{"449 Failed ReadDiscInformaton "}));
    EXPECT_EQ(logged(4), (std::vector<std::string>{"538 Failed ReadDiscInformaton "}));
    try {
        drive->getBGFormatInformation();
        ADD_FAILURE() << "no exception";
    } catch (const kivrlibdrive::TestFailedException& failure) {
        EXPECT_EQ(failure.getStatus(), 0x3A02u);
    }
}

struct DiskInfoCase {
    uint16_t length;
    bool filled;
    uint8_t applicationCode;  // byte 32 as parsed
    uint8_t opcTables;        // byte 33 as parsed
};

TEST_F(OpticalDriveTest, DiscInformationPageParsedFromThirtyBytesOn) {
    const DiskInfoCase cases[] = {
        {29, false, 0, 0},   {30, true, 0, 0},  // 32 bytes copied
        {31, true, 0xA5, 0}, {32, true, 0xA5, 0x07}, {800, true, 0xA5, 0x07},
    };
    for (const DiskInfoCase& c : cases) {
        SCOPED_TRACE(c.length);
        uint8_t raw[34];
        for (size_t i = 0; i < sizeof(raw); ++i) raw[i] = static_cast<uint8_t>(i + 1);
        raw[0] = static_cast<uint8_t>(c.length >> 8);
        raw[1] = static_cast<uint8_t>(c.length);
        raw[32] = 0xA5;
        raw[33] = 0x07;
        kivrlibdrive::CDRRDiskInformation info;
        std::memset(&info, 0xEE, sizeof(info));
        drive->parseDiskInfoPage(raw, &info);
        EXPECT_EQ(info.dataLength, c.filled ? c.length : 0);
        EXPECT_EQ(info.discStatus, c.filled ? 3 : 0);
        EXPECT_EQ(info.flags, c.filled ? 8 : 0);
        EXPECT_EQ(info.discIdentification, c.filled ? 0x0D0E0F10u : 0u);
        EXPECT_EQ(info.lastSessionLeadInStart, c.filled ? 0x11121314u : 0u);
        EXPECT_EQ(info.lastPossibleLeadOutStart, c.filled ? 0x15161718u : 0u);
        EXPECT_EQ(info.discBarCode[7], c.filled ? 0x20 : 0);
        EXPECT_EQ(info.discApplicationCode, c.applicationCode);
        EXPECT_EQ(info.numberOfOpcTables, c.opcTables);
    }
}

struct GeometryCase {
    const char* name;
    std::function<void(OpticalDriveTest&)> setup;
    const char* error;  // the exception's message, or null
    unsigned long bytesPerSector;
    std::optional<uint64_t> totalSectors;  // when the fallback through READ CAPACITY decides
};

TEST_F(OpticalDriveTest, GeometryFromTheSystemElseFromTheCapacity) {
    const uint32_t capacity = sim::mmc::discOf(MediaKind::DvdRom).capacitySectors;
    const GeometryCase cases[] = {
        {"ready disc", [](OpticalDriveTest& t) { t.loadReady(MediaKind::DvdPlusR); }, nullptr, 2048,
         std::nullopt},
        // Not ready for the system's query; the START waits for the disc, then the capacity.
        {"spinning up",
         [](OpticalDriveTest& t) { t.writer->insertDisc(sim::mmc::discOf(MediaKind::DvdRom)); },
         nullptr, 2048, capacity - 1},
        {"no disc", [](OpticalDriveTest&) {},
         " No media present: No media present so cannot obtain drive geometry", 0, std::nullopt},
        {"capacity unreadable",
         [](OpticalDriveTest& t) {
             t.writer->insertDisc(sim::mmc::discOf(MediaKind::DvdPlusR));
             t.fail(op::kReadCapacity, 0x4400);
         },
         "There was problem getting drive geometry", 2048, std::nullopt},
    };
    for (const GeometryCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        writer->removeDisc();
        writer->pressEjectButton();
        drive = std::make_unique<HostDrive>(device);
        c.setup(*this);
        std::string error;
        try {
            drive->getDriveGeometry();
        } catch (const kiv::Exception& failure) {
            error = failure.getMessage().toUtf8();
        }
        EXPECT_EQ(error, c.error ? c.error : "");
        EXPECT_EQ(drive->getBytesPerSector(), c.bytesPerSector);
        if (c.totalSectors) {
            EXPECT_EQ(drive->totalSectors, *c.totalSectors);
            EXPECT_EQ(drive->diskGeometry().Cylinders, 1);
            EXPECT_EQ(drive->diskGeometry().SectorsPerTrack, 1u);
        } else if (!c.error) {
            const auto& g = drive->diskGeometry();
            EXPECT_EQ(drive->totalSectors,
                      uint64_t(g.Cylinders) * g.TracksPerCylinder * g.SectorsPerTrack);
            EXPECT_GT(drive->totalSectors, 0u);
        }
    }
}

struct ProtectionCase {
    const char* name;
    MediaKind kind;
    uint8_t protection;
    bool structureFails;
    bool answer;
    size_t structureReads;
    std::vector<std::string> detail;   // priority 1 log lines
    std::vector<std::string> warning;  // priority 4
};

TEST_F(OpticalDriveTest, CopyProtectionAskedOfDvdAndHdDvdKindsOnly) {
    const ProtectionCase cases[] = {
        {"protected DVD-ROM",
         MediaKind::DvdRom,
         1,
         false,
         true,
         1,
         {"499 DVD/HD-DVD Disc is copy protected\n"},
         {}},
        {"open DVD-ROM",
         MediaKind::DvdRom,
         0,
         false,
         false,
         1,
         {"504 DVD/HD-DVD Disc is not copy protected\n"},
         {}},
        {"protected HD DVD-ROM",
         MediaKind::HdDvdRom,
         2,
         false,
         true,
         1,
         {"499 DVD/HD-DVD Disc is copy protected\n"},
         {}},
        {"DVD-RAM never asked", MediaKind::DvdRam, 1, false, false, 0, {}, {}},
        {"CD never asked", MediaKind::CdRom, 1, false, false, 0, {}, {}},
        {"structure refused",
         MediaKind::DvdRom,
         1,
         true,
         false,
         1,
         {},
         {"508 Unable to identify if disc is copy protected\n"}},
    };
    for (const ProtectionCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        sim::mmc::DiscModel disc = sim::mmc::discOf(c.kind);
        disc.copyProtection = c.protection;
        loadReady(disc);
        if (c.structureFails) fail(op::kReadDiscStructure, 0x2400);
        writer->clearHistory();
        kiv::LogFactory::setPriority(1);
        const size_t detailBefore = logged(1).size();
        const size_t warningBefore = logged(4).size();
        EXPECT_EQ(drive->isMediaCopyProtected(), c.answer);
        EXPECT_EQ(commands(op::kReadDiscStructure).size(), c.structureReads);
        std::vector<std::string> detail = logged(1);
        detail.erase(detail.begin(), detail.begin() + static_cast<long>(detailBefore));
        std::vector<std::string> warning = logged(4);
        warning.erase(warning.begin(), warning.begin() + static_cast<long>(warningBefore));
        EXPECT_EQ(detail, c.detail);
        EXPECT_EQ(warning, c.warning);
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
    EXPECT_EQ(logged(4), (std::vector<std::string>{
                             "1782 Failed getting the configuration for the Real Time Streaming "
                             "Feature. status = 9216"}));
}

}  // namespace
}  // namespace optest

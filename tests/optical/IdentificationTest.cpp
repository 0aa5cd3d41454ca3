// Manufacturer and disc identifiers of DVD and BD media, and the ATIP times of a CD.
#include <optional>

#include "OpticalDriveFixture.h"
#include "libDrive/Exceptions.h"
#include "scsi/Opcodes.h"

namespace optest {
namespace {

namespace op = kivscsi::opcode;

struct IdCase {
    const char* name;
    MediaKind kind;
    std::string manufacturer, discId;                  // as the disc carries them
    std::string expectedManufacturer, expectedDiscId;  // "" when the read throws
    std::vector<uint8_t> formatsSent;                  // structure formats of both calls
    // The first structure read of each call answers this.
    std::optional<uint16_t> firstReadFails = std::nullopt;
};

TEST_F(OpticalDriveTest, DvdIdentifiersFallBackToPhysicalFormatOnlyWhenAdipIsRefused) {
    using enum MediaKind;
    const std::string zeroInMaker("AB\0CDEFG", 8), zeroInId("X\0Y", 3);
    const IdCase cases[] = {
        {"plain", DvdPlusR, "RICOHJPN", "R03", "RICOHJPN", "R03", {0x11, 0x11}},
        // DVD-R has no ADIP: both come from the physical format information.
        {"blanks trimmed", DvdMinusR, "  MKM   ", " G1", "MKM", "G1", {0x11, 0x00, 0x11, 0x00}},
        {"cut at a zero byte", DvdPlusR, zeroInMaker, zeroInId, "AB", "X", {0x11, 0x11}},
        {"other error", DvdPlusR, "RICOHJPN", "R03", "", "", {0x11, 0x11}, 0x3100},
    };
    for (const IdCase& c : cases) {
        SCOPED_TRACE(c.name);
        sim::mmc::DiscModel disc = sim::mmc::discOf(c.kind);
        disc.manufacturerId = c.manufacturer;
        disc.discId = c.discId;
        loadReady(disc);
        writer->clearHistory();
        std::string ids[2];
        for (int call = 0; call < 2; ++call) {
            if (c.firstReadFails) fail(op::kReadDiscStructure, *c.firstReadFails, 1);
            try {
                ids[call] =
                    (call == 0 ? drive->getDiscManufacturerID() : drive->getDiscID()).toUtf8();
            } catch (const kivrlibdrive::FailedRetrivingADIPInfo& failure) {
                EXPECT_EQ(failure.getMessage().toUtf8(), "Cannot retrieve ADIP info.");
            }
        }
        EXPECT_EQ(ids[0], c.expectedManufacturer);
        EXPECT_EQ(ids[1], c.expectedDiscId);
        std::vector<uint8_t> formats;
        for (const auto& cdb : commands(op::kReadDiscStructure)) formats.push_back(cdb[7]);
        EXPECT_EQ(formats, c.formatsSent);
    }
    EXPECT_EQ(logged(1),
              (std::vector<std::string>{"1318 Manufacturer Id : RICOHJPN", "1452 Disc Id : R03",
                                        "1318 Manufacturer Id : MKM", "1452 Disc Id : G1",
                                        "1318 Manufacturer Id : AB", "1452 Disc Id : X"}));
    const std::string notice =
        "Drive does not support reading ADIP info directly.  Firmware update may fix this problem";
    const std::string second = "Use second method by reading physical format infomation";
    EXPECT_EQ(logged(2), (std::vector<std::string>{"1289 " + notice, "1289 " + second,
                                                   "1423 " + notice, "1423 " + second}));
}

TEST_F(OpticalDriveTest, BluRayIdentifiersAndCdAtipTimes) {
    sim::mmc::DiscModel bd = sim::mmc::discOf(MediaKind::BdR);
    bd.manufacturerId = "VERBAT";
    bd.discId = "IM0";
    loadReady(bd);
    EXPECT_EQ(drive->getBLUERAYDiscManufacturerID().toUtf8(), "VERBAT");
    EXPECT_EQ(drive->getBLUERAYDiscID().toUtf8(), "IM0");
    fail(op::kReadDiscStructure, 0x3000, 2);
    EXPECT_THROW(drive->getBLUERAYDiscManufacturerID(), kivrlibdrive::FailedRetrivingADIPInfo);
    EXPECT_THROW(drive->getBLUERAYDiscID(), kivrlibdrive::FailedRetrivingADIPInfo);
    EXPECT_EQ(logged(4), (std::vector<std::string>{
                             "1339 Failed Reading Blue Ray disc Structure for Manufacturer id. "
                             "Error Code: 12288",
                             "1376 Failed Reading BlueRay Disc Structure for Disc id"}));

    sim::mmc::DiscModel cd = sim::mmc::discOf(MediaKind::CdR);
    cd.leadIn = {97, 27, 21};
    cd.leadOut = {79, 59, 71};
    loadReady(cd);
    EXPECT_EQ(drive->getLeadInTime(), (kiv::Array<unsigned int>{97, 27, 21}));
    EXPECT_EQ(drive->getLeadOutTime(), (kiv::Array<unsigned int>{79, 59, 71}));
    EXPECT_EQ(logged(1),
              (std::vector<std::string>{"1354 Manufacturer Id : VERBAT", "1393 Disc Id : IM0",
                                        "1479 Lead In : 97:27:21", "1506 Lead Out : 79:59:71"}));
    fail(op::kReadTocPmaAtip, 0x2400, 1);
    EXPECT_EQ(thrownStatus<kivrlibdrive::FailedRetrivingATIPInfo>([&] { drive->getLeadInTime(); }),
              0x2400u);
}

}  // namespace
}  // namespace optest

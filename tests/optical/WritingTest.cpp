// Mode pages, speeds, blanking and formatting with progress, closing.
#include <cstring>
#include <functional>
#include <optional>

#include "OpticalDriveFixture.h"
#include "libDrive/Exceptions.h"
#include "scsi/Opcodes.h"

namespace optest {
namespace {

namespace op = kivscsi::opcode;
using kivrlibdrive::WriteParametersInfo;

TEST_F(OpticalDriveTest, WriteParametersPageParsedAndPutBackByteForByte) {
    uint8_t page[60];
    for (size_t i = 0; i < sizeof(page); ++i) page[i] = static_cast<uint8_t>(0x80 + i);
    page[0] = 0xC5;  // PS, SPF, page 05h
    const uint8_t packet[] = {0x00, 0x00, 0x01, 0x20};
    std::memcpy(page + 10, packet, 4);
    page[14] = 0x00;
    page[15] = 0x96;

    const int lengths[] = {50, 56, 60};
    for (int length : lengths) {
        SCOPED_TRACE(length);
        WriteParametersInfo info;
        std::memset(&info, 0xEE, sizeof(info));
        drive->parseWritePropertiesPage(page, length, &info);
        EXPECT_EQ(uint32_t{info.packetSize}, 0x120u);
        EXPECT_EQ(uint16_t{info.audioPauseLength}, 150u);
        const auto* bytes = reinterpret_cast<const uint8_t*>(&info);
        EXPECT_EQ(bytes[49], page[49]);
        // Bytes past the length keep what they held.
        EXPECT_EQ(bytes[50], length > 50 ? page[50] : 0xEE);
        EXPECT_EQ(bytes[55], length > 55 ? page[55] : 0xEE);
    }

    WriteParametersInfo info;
    drive->parseWritePropertiesPage(page, 56, &info);
    uint8_t out[60];
    std::memset(out, 0xEE, sizeof(out));
    drive->disParseWritePropertiesPage(out, 50, &info);
    uint8_t expected[60];
    std::memcpy(expected, page, 52);
    expected[0] = 0x45;  // PS cleared, SPF kept
    expected[1] = 50;
    std::memset(expected + 52, 0xEE, 8);
    EXPECT_EQ(0, std::memcmp(out, expected, sizeof(out)));
    // The caller's copy is left in wire order.
    EXPECT_EQ(0, std::memcmp(reinterpret_cast<uint8_t*>(&info) + 10, packet, 4));
}

TEST_F(OpticalDriveTest, WriteParametersRoundTripThroughTheDrive) {
    loadReady(MediaKind::CdR);
    WriteParametersInfo info{};
    ASSERT_EQ(drive->getWriteProperties(&info), 0);
    EXPECT_EQ(info.pageCode & 0x3F, 0x05);
    info.writeType = static_cast<uint8_t>((info.writeType & 0xF0) | 0x01);  // track at once
    info.trackMode = static_cast<uint8_t>((info.trackMode & 0x3F) | 0xC0);  // multi-session
    EXPECT_EQ(drive->setWriteProperties(&info), 0u);
    const auto selects = commands(op::kModeSelect10);
    ASSERT_EQ(selects.size(), 1u);
    EXPECT_EQ((selects[0][7] << 8) | selects[0][8], 60);  // header and 52 bytes of page

    WriteParametersInfo again{};
    ASSERT_EQ(drive->getWriteProperties(&again), 0);
    EXPECT_EQ(again.writeType & 0x0F, 0x01);
    EXPECT_EQ(again.trackMode & 0xC0, 0xC0);

    EXPECT_EQ(drive->getSensePage(0x3E), nullptr);
    fail(op::kModeSense10, 0x2400, 1);
    EXPECT_EQ(drive->getWriteProperties(&again), -1);
}

struct SpeedCase {
    unsigned int requested;  // kB/s asked of the drive
    unsigned int reported;   // what getCurrentWriteSpeed answers
};

TEST_F(OpticalDriveTest, WriteSpeedsReportedInWholeCdSpeeds) {
    EXPECT_EQ(drive->getCurrentWriteSpeed(), 0u);  // no disc
    loadReady(MediaKind::CdRw);
    const SpeedCase cases[] = {{0xFFFF, 4248}, {2822, 2832}, {1764, 1770}, {706, 708}};
    for (const SpeedCase& c : cases) {
        SCOPED_TRACE(c.requested);
        drive->setSpeed(c.requested);
        EXPECT_EQ(drive->getCurrentWriteSpeed(), c.reported);
    }
    writer->disappear();
    EXPECT_EQ(thrownMessage<kivrlibdrive::TestFailedException>([&] { drive->setSpeed(706); }),
              "Failed to set the drive speed to 0xFFFF");
}

kivrlibdrive::tag_CBlankingThreadParms formatParms(const char* deviceName, uint8_t formatType) {
    kivrlibdrive::tag_CBlankingThreadParms parms{};
    parms.formatList[3] = 8;  // one descriptor
    std::memset(parms.formatList + 4, 0xFF, 4);
    parms.formatList[8] = static_cast<uint8_t>(formatType << 2);
    parms.deviceName = const_cast<char*>(deviceName);
    parms.status = 0xFFFFFFFF;
    return parms;
}

struct LongOperationCase {
    const char* name;
    MediaKind kind;
    bool blank;
    unsigned int expectedSeconds, startPercent, endPercent;
    std::vector<unsigned int> percents;
    std::optional<unsigned int> error = std::nullopt;  // TestFailedException's status
    std::optional<uint16_t> fault = std::nullopt;      // planted on the command itself
};

TEST_F(OpticalDriveTest, FormatAndBlankReportProgressWhileTheWorkerRuns) {
    const LongOperationCase cases[] = {
        // Format: 6 s of command, one poll a second later; progress every second, multiplied
        // before dividing (2, 5, 7 rather than 2, 4, 6), the end once the worker is done.
        {"format", MediaKind::DvdMinusRw, false, 4, 0, 10, {2, 5, 7, 10, 10, 10, 10}},
        // Blank: 10 s of command, progress every 4 s.
        {"blank", MediaKind::CdRw, true, 20, 50, 90, {58, 66, 90}},
        {"sequence error passes quietly", MediaKind::DvdMinusRw, false, 4, 0, 10, {}, {}, 0x2C00},
        {"format refused", MediaKind::CdR, false, 4, 0, 10, {}, 0x3006},
        {"blank refused", MediaKind::CdR, true, 4, 0, 10, {}, 0x3005},
    };
    for (const LongOperationCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        sim::mmc::DiscModel disc = sim::mmc::discOf(c.kind);
        disc.formatSeconds = 6;
        disc.minimalBlankSeconds = 10;
        loadReady(disc);
        if (c.fault) fail(c.blank ? op::kBlank : op::kFormatUnit, *c.fault, 1);
        host.clear();
        writer->clearHistory();
        auto parms = formatParms(kDevice, 0x10);
        const auto error = thrownStatus<kivrlibdrive::TestFailedException>([&] {
            if (c.blank) {
                drive->blankDiscImp(&parms, c.expectedSeconds, c.startPercent, c.endPercent);
            } else {
                drive->formatDiscImp(&parms, c.expectedSeconds, c.startPercent, c.endPercent);
            }
        });
        EXPECT_EQ(error, c.error);
        EXPECT_EQ(host.percents(), c.percents);
        if (c.blank) {
            ASSERT_EQ(commands(op::kBlank).size(), 1u);
            EXPECT_EQ(commands(op::kBlank)[0][1] & 0x07, 1);  // minimal blank
        }
    }
}

TEST_F(OpticalDriveTest, BackgroundFormatIsReportedAndCanBeStopped) {
    loadReady(sim::mmc::discOf(MediaKind::DvdPlusRw));
    EXPECT_EQ(drive->getBGFormatInformation(), 0u);
    auto parms = formatParms(kDevice, 0x26);
    drive->formatDiscImp(&parms, 10, 0, 100);
    EXPECT_EQ(parms.status, 0u);
    EXPECT_NE(drive->getBGFormatInformation(), 0u);
    drive->stopBackGroundFormatting();
    const auto closes = commands(op::kCloseTrackSession);
    ASSERT_EQ(closes.size(), 1u);
    EXPECT_EQ(closes[0][2] & 0x07, 0);                 // stop the background format
    EXPECT_EQ((closes[0][4] << 8) | closes[0][5], 0);  // on track 0
}

struct CloseCase {
    const char* name;
    std::optional<bool> blankMediaOnly;  // the device property, when present
    bool write;                          // sectors written first
    bool session;                        // closeSession, else closeTrack
    uint8_t function;                    // the close function sent
    std::optional<unsigned int> error;
};

TEST_F(OpticalDriveTest, ClosingSendsTheFunctionTheDeviceAsksFor) {
    const CloseCase cases[] = {
        {"track", std::nullopt, true, false, 1, std::nullopt},
        {"track never opened", std::nullopt, false, false, 1, 0x2C00},
        {"session, no property", std::nullopt, true, true, 1, std::nullopt},
        {"session, blank media only", true, true, true, 2, std::nullopt},
        {"session, property false", false, true, true, 1, std::nullopt},
        {"session with nothing written", true, false, true, 2, 0x2C00},
    };
    for (const CloseCase& c : cases) {
        SCOPED_TRACE(c.name);
        quel5::DiagDevice described(QuelString(kiv::String::fromUtf8(kDevice)));
        if (c.blankMediaOnly) described.setBool(L"BlankMediaOnly", *c.blankMediaOnly);
        HostDrive closer(described);
        loadReady(MediaKind::DvdMinusR);
        if (c.write) {
            closer.getDriveGeometry();
            const std::vector<uint8_t> data(16 * 2048, 0x11);
            closer.writeSectors(0, 16, data.data(), 16 * 2048);
        }
        writer->clearHistory();
        const auto error =
            c.session
                ? thrownStatus<kivrlibdrive::FailedClosingSession>([&] { closer.closeSession(); })
                : thrownStatus<kivrlibdrive::FailedClosingTrack>([&] { closer.closeTrack(7); });
        EXPECT_EQ(error, c.error);
        const auto closes = commands(op::kCloseTrackSession);
        ASSERT_EQ(closes.size(), 1u);
        EXPECT_EQ(closes[0][2] & 0x07, c.function);
    }
    loadReady(MediaKind::DvdPlusR);
    EXPECT_EQ(thrownStatus<kivrlibdrive::FailedStoppingBGFormat>(
                  [&] { drive->stopBackGroundFormatting(); }),
              0x2400u);
}

}  // namespace
}  // namespace optest

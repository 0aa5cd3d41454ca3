// Every command function's command block, byte for byte, with its data phase and timeout, as
// it reaches an emulated device through the transport.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "scsi/Scsi.h"
#include "support/RecordingTarget.h"

namespace {

using kivscsi::DataDirection;
using kivscsi::Status;

constexpr DataDirection kNone = DataDirection::None;
constexpr DataDirection kIn = DataDirection::FromDevice;
constexpr DataDirection kOut = DataDirection::ToDevice;

struct CommandCase {
    const char* name;
    std::function<Status(const _SCSI_PATH&, const char*, uint8_t*)> call;
    std::vector<uint8_t> cdb;
    DataDirection direction;
    uint32_t bufferLength;
    uint32_t timeoutMs;
};

TEST(CommandBlockTest, EachCallSendsItsCommandBlock) {
    // clang-format off
    const std::vector<CommandCase> cases = {
        {"TestUnitReady", [](auto& p, auto n, auto) { return kivscsi::TestUnitReady(p, n); },
         {0x00, 0, 0, 0, 0, 0}, kNone, 0, 30000},
        {"StartUnit", [](auto& p, auto n, auto) { return kivscsi::StartUnit(p, n); },
         {0x1B, 0, 0, 0, 0x01, 0}, kNone, 0, 60000},
        {"StopUnit", [](auto& p, auto n, auto) { return kivscsi::StopUnit(p, n); },
         {0x1B, 0, 0, 0, 0x00, 0}, kNone, 0, 60000},
        {"Load", [](auto& p, auto n, auto) { return kivscsi::Load(p, n); },
         {0x1B, 0, 0, 0, 0x03, 0}, kNone, 0, 60000},
        {"EjectMedia", [](auto& p, auto n, auto) { return kivscsi::EjectMedia(p, n); },
         {0x1B, 0, 0, 0, 0x02, 0}, kNone, 0, 60000},
        {"PreventMediumRemoval",
         [](auto& p, auto n, auto) { return kivscsi::PreventMediumRemoval(p, n); },
         {0x1E, 0, 0, 0, 0x01, 0}, kNone, 0, 30000},
        {"AllowMediumRemoval",
         [](auto& p, auto n, auto) { return kivscsi::AllowMediumRemoval(p, n); },
         {0x1E, 0, 0, 0, 0x00, 0}, kNone, 0, 30000},
        {"ReadCapacity", [](auto& p, auto n, auto) { return kivscsi::ReadCapacity(p, n); },
         {0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0}, kIn, 8, 30000},
        {"KIVR_SynchronizeCache",
         [](auto& p, auto n, auto) { return kivscsi::KIVR_SynchronizeCache(p, n, 300); },
         {0x35, 0, 0, 0, 0, 0, 0, 0, 0, 0}, kNone, 0, 300000},
        {"GetConfiguration current profile",
         [](auto& p, auto n, auto b) { return kivscsi::GetConfiguration(p, n, 2, 0, b, 512); },
         {0x46, 0x02, 0x00, 0x00, 0, 0, 0, 0x02, 0x00, 0}, kIn, 512, 30000},
        {"GetConfiguration real time streaming",
         [](auto& p, auto n, auto b) {
             return kivscsi::GetConfiguration(p, n, 2, 0x0107, b, 16);
         },
         {0x46, 0x02, 0x01, 0x07, 0, 0, 0, 0x00, 0x10, 0}, kIn, 16, 30000},
        {"GetEventStatusNotification media class",
         [](auto& p, auto n, auto b) {
             return kivscsi::GetEventStatusNotification(p, n, true, 0x10, b, 20);
         },
         {0x4A, 0x01, 0, 0, 0x10, 0, 0, 0x00, 0x14, 0}, kIn, 20, 30000},
        {"ReadDiscInformation",
         [](auto& p, auto n, auto b) { return kivscsi::ReadDiscInformation(p, n, b, 804, 0); },
         {0x51, 0x00, 0, 0, 0, 0, 0, 0x03, 0x24, 0}, kIn, 804, 30000},
        {"ReadTrackInformation invisible track",
         [](auto& p, auto n, auto b) {
             return kivscsi::ReadTrackInformation(p, n, 1, 0xFF, b, 48);
         },
         {0x52, 0x01, 0x00, 0x00, 0x00, 0xFF, 0, 0x00, 0x30, 0}, kIn, 48, 30000},
        {"ReadTrackInformation by LBA, type kept to two bits",
         [](auto& p, auto n, auto b) {
             return kivscsi::ReadTrackInformation(p, n, 0xFC, 0x0102A3B4, b, 0x0123);
         },
         {0x52, 0x00, 0x01, 0x02, 0xA3, 0xB4, 0, 0x01, 0x23, 0}, kIn, 0x0123, 30000},
        {"ReadTrackInformation by session",
         [](auto& p, auto n, auto b) { return kivscsi::ReadTrackInformation(p, n, 2, 3, b, 36); },
         {0x52, 0x02, 0x00, 0x00, 0x00, 0x03, 0, 0x00, 0x24, 0}, kIn, 36, 30000},
        {"GetWriteSpeedPerformance",
         [](auto& p, auto n, auto b) {
             return kivscsi::GetWriteSpeedPerformance(p, n, 0x0102, b, 8 + 16 * 0x0102);
         },
         {0xAC, 0x00, 0, 0, 0, 0, 0, 0, 0x01, 0x02, 0x03, 0}, kIn, 8 + 16 * 0x0102, 30000},
        {"ReadDvdStructure ADIP",
         [](auto& p, auto n, auto b) {
             return kivscsi::ReadDvdStructure(p, n, 0, 0, 0x11, b, 256, 0);
         },
         {0xAD, 0x00, 0, 0, 0, 0, 0x00, 0x11, 0x01, 0x00, 0x00, 0}, kIn, 256, 30000},
        {"ReadDvdStructure all fields",
         [](auto& p, auto n, auto b) {
             return kivscsi::ReadDvdStructure(p, n, 0x01020304, 1, 0x01, b, 512, 3);
         },
         {0xAD, 0x00, 0x01, 0x02, 0x03, 0x04, 0x01, 0x01, 0x02, 0x00, 0xC0, 0}, kIn, 512,
         30000},
        {"ReadBdStructure disc information",
         [](auto& p, auto n, auto b) {
             return kivscsi::ReadBdStructure(p, n, 0, 0, 0x00, b, 260, 0);
         },
         {0xAD, 0x01, 0, 0, 0, 0, 0x00, 0x00, 0x01, 0x04, 0x00, 0}, kIn, 260, 30000},
        {"KIVR_ReadATIP",
         [](auto& p, auto n, auto b) { return kivscsi::KIVR_ReadATIP(p, n, 0, b, 804); },
         {0x43, 0x00, 0x04, 0, 0, 0, 0, 0x03, 0x24, 0}, kIn, 804, 30000},
        {"KIVR_ReadATIP in MSF form",
         [](auto& p, auto n, auto b) { return kivscsi::KIVR_ReadATIP(p, n, 1, b, 28); },
         {0x43, 0x02, 0x04, 0, 0, 0, 0, 0x00, 0x1C, 0}, kIn, 28, 30000},
        {"KIVR_GetSenseData10 write parameters page",
         [](auto& p, auto n, auto b) { return kivscsi::KIVR_GetSenseData10(p, n, 0x05, b, 804); },
         {0x5A, 0x00, 0x05, 0, 0, 0, 0, 0x03, 0x24, 0}, kIn, 804, 30000},
        {"KIVR_GetSenseData10 keeps the page code to six bits",
         [](auto& p, auto n, auto b) { return kivscsi::KIVR_GetSenseData10(p, n, 0xEA, b, 64); },
         {0x5A, 0x00, 0x2A, 0, 0, 0, 0, 0x00, 0x40, 0}, kIn, 64, 30000},
        {"KIVR_SetSenseData10",
         [](auto& p, auto n, auto b) { return kivscsi::KIVR_SetSenseData10(p, n, 0, b, 60); },
         {0x55, 0x10, 0, 0, 0, 0, 0, 0x00, 0x3C, 0}, kOut, 60, 30000},
        {"KIVR_SetSenseData10 saving pages",
         [](auto& p, auto n, auto b) { return kivscsi::KIVR_SetSenseData10(p, n, 1, b, 10); },
         {0x55, 0x11, 0, 0, 0, 0, 0, 0x00, 0x0A, 0}, kOut, 10, 30000},
        {"KIVR_SetCDSpeed",
         [](auto& p, auto n, auto) { return kivscsi::KIVR_SetCDSpeed(p, n, 0xFFFF, 0x1234); },
         {0xBB, 0x00, 0xFF, 0xFF, 0x12, 0x34, 0, 0, 0, 0, 0, 0}, kNone, 0, 30000},
        {"SendOPCInfo", [](auto& p, auto n, auto) { return kivscsi::SendOPCInfo(p, n); },
         {0x54, 0x01, 0, 0, 0, 0, 0, 0x00, 0x00, 0}, kNone, 0, 60000},
        {"ReadBlocksTimedEx",
         [](auto& p, auto n, auto b) {
             return kivscsi::ReadBlocksTimedEx(p, n, b, 1024, 0x00A1B2C3, 0x0203, 10);
         },
         {0x28, 0x00, 0x00, 0xA1, 0xB2, 0xC3, 0, 0x02, 0x03, 0}, kIn, 1024, 10000},
        {"ReadBlocksFUAEx",
         [](auto& p, auto n, auto b) {
             return kivscsi::ReadBlocksFUAEx(p, n, b, 1024, 0xFFFFFFFE, 0x8001);
         },
         {0xA8, 0x08, 0xFF, 0xFF, 0xFF, 0xFE, 0x00, 0x00, 0x80, 0x01, 0, 0}, kIn, 1024, 20000},
        {"WriteBlocksEx moves count x block bytes",
         [](auto& p, auto n, auto b) {
             return kivscsi::WriteBlocksEx(p, n, b, 256, 0x01000000, 4, 300);
         },
         {0x2A, 0x00, 0x01, 0x00, 0x00, 0x00, 0, 0x00, 0x04, 0}, kOut, 1024, 300000},
        {"Blank minimal",
         [](auto& p, auto n, auto) { return kivscsi::Blank(p, n, 1); },
         {0xA1, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, kNone, 0, 3600000},
        {"Blank keeps the type to three bits, start address",
         [](auto& p, auto n, auto) { return kivscsi::Blank(p, n, 0xFC, 0x00000102); },
         {0xA1, 0x04, 0x00, 0x00, 0x01, 0x02, 0, 0, 0, 0, 0, 0}, kNone, 0, 3600000},
        {"FormatDvdUnit",
         [](auto& p, auto n, auto b) { return kivscsi::FormatDvdUnit(p, n, b, 12); },
         {0x04, 0x11, 0, 0, 0, 0}, kOut, 12, 3600000},
        {"CloseTrack", [](auto& p, auto n, auto) { return kivscsi::CloseTrack(p, n); },
         {0x5B, 0x00, 0x01, 0x00, 0x00, 0x01, 0, 0, 0, 0}, kNone, 0, 3600000},
        {"CloseFirstSession closing the track",
         [](auto& p, auto n, auto) { return kivscsi::CloseFirstSession(p, n, 1); },
         {0x5B, 0x00, 0x01, 0x00, 0x00, 0x01, 0, 0, 0, 0}, kNone, 0, 3600000},
        {"CloseFirstSession closing the session",
         [](auto& p, auto n, auto) { return kivscsi::CloseFirstSession(p, n, 2); },
         {0x5B, 0x00, 0x02, 0x00, 0x00, 0x01, 0, 0, 0, 0}, kNone, 0, 3600000},
        {"CloseTrackSession stopping a background format",
         [](auto& p, auto n, auto) { return kivscsi::CloseTrackSession(p, n, 0, 0, false); },
         {0x5B, 0x00, 0x00, 0x00, 0x00, 0x00, 0, 0, 0, 0}, kNone, 0, 3600000},
        {"CloseTrackSession every field",
         [](auto& p, auto n, auto) {
             return kivscsi::CloseTrackSession(p, n, 0x0E, 0x1234, true);
         },
         {0x5B, 0x01, 0x06, 0x00, 0x12, 0x34, 0, 0, 0, 0}, kNone, 0, 3600000},
    };
    // clang-format on

    const _SCSI_PATH path{1, 2, 3, 4};
    for (const CommandCase& c : cases) {
        SCOPED_TRACE(c.name);
        scsitest::RegisteredTarget device;
        device.target().reply.dataIn.assign(8192, 0);
        std::vector<uint8_t> buffer(8192, 0x5A);
        EXPECT_EQ(c.call(path, device.name(), buffer.data()), kivscsi::kStatusGood);
        const auto& commands = device.target().commands;
        ASSERT_EQ(commands.size(), 1u);
        EXPECT_EQ(commands[0].cdb, c.cdb);
        EXPECT_EQ(commands[0].direction, c.direction);
        EXPECT_EQ(commands[0].bufferLength, c.bufferLength);
        EXPECT_EQ(commands[0].timeoutMs, c.timeoutMs);
    }
}

TEST(CommandBlockTest, DataOutCarriesTheCallersBytes) {
    scsitest::RegisteredTarget device;
    std::vector<uint8_t> list = {0x00, 0x02, 0x00, 0x08, 0x00, 0x01,
                                 0x00, 0x00, 0x26, 0x00, 0x00, 0x00};
    ASSERT_EQ(kivscsi::FormatDvdUnit({}, device.name(), list.data(), 12), kivscsi::kStatusGood);
    ASSERT_EQ(device.target().commands.size(), 1u);
    EXPECT_EQ(device.target().commands[0].dataOut, list);
}

TEST(CommandBlockTest, WriteLargerThanTheTransportCanCarryIsRefusedUnsent) {
    scsitest::RegisteredTarget device;
    uint8_t block[16] = {};
    EXPECT_EQ(kivscsi::WriteBlocksEx({}, device.name(), block, 0x00100000, 0, 0x1000, 300),
              kivscsi::kStatusInvalidRequest);
    EXPECT_TRUE(device.target().commands.empty());
}

}  // namespace

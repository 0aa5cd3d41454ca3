// Mode pages 05h and 2Ah and the speed the drive settles on for the one asked for.
#include "WriterFixture.h"

namespace mmctest {
namespace {

TEST_F(WriterTest, TheWriteSpeedIsTheFastestSupportedNotAboveTheRequest) {
    const struct {
        MediaKind kind;
        uint16_t requested;
        uint16_t expected;
    } rows[] = {
        {MediaKind::CdR, 0xFFFF, 8467},  {MediaKind::CdR, 8467, 8467},
        {MediaKind::CdR, 8466, 7056},    {MediaKind::CdR, 2822, 2822},
        {MediaKind::CdR, 100, 2822},     {MediaKind::DvdPlusR, 16620, 16620},
        {MediaKind::BdR, 0xFFFF, 53940}, {MediaKind::DvdRom, 0xFFFF, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.requested);
        loadReady(sim::mmc::discOf(row.kind));
        ASSERT_EQ(kivscsi::KIVR_SetCDSpeed(path, kDevice, 0xFFFF, row.requested), 0u);
        EXPECT_EQ(currentWriteSpeed(), row.expected);
        EXPECT_EQ(writer->snapshot().currentWriteSpeed, row.expected);
    }
}

TEST_F(WriterTest, CapabilitiesPageListsTheDiscsSpeedsAndTheLock) {
    loadReady(sim::mmc::discOf(MediaKind::CdRw));
    ASSERT_EQ(kivscsi::PreventMediumRemoval(path, kDevice), 0u);
    const Answer answer = modeSense(0x2A);
    ASSERT_EQ(answer.status, 0u);
    const auto page = kivscsi::findModePage(answer.data(), answer.received, 0x2A);
    ASSERT_TRUE(page.has_value());
    const uint8_t* p = page->page;
    ASSERT_GE(p[1], 28);
    EXPECT_EQ(page->available, size_t{p[1]} + 2);
    EXPECT_EQ(p[6] & 0x02, 0x02);  // locked
    const uint16_t descriptors = static_cast<uint16_t>(p[30] << 8 | p[31]);
    ASSERT_EQ(descriptors, 4);
    EXPECT_EQ(p[32 + 2] << 8 | p[32 + 3], 4234);
    EXPECT_EQ(p[32 + 12 + 2] << 8 | p[32 + 12 + 3], 706);
}

TEST_F(WriterTest, WriteParametersKeepWhatModeSelectSent) {
    const struct {
        uint8_t byte2, byte3;
        Status expected;
        uint8_t seenByte2, seenByte3;
    } rows[] = {
        {0x42, 0xC4, 0, 0x42, 0xC4},       // SAO, multi-session
        {0x04, 0x05, 0, 0x04, 0x05},       // layer jump: the highest write type
        {0x05, 0x04, 0x2600, 0x04, 0x05},  // write type 5 refused, page unchanged
    };
    for (const auto& row : rows) {
        EXPECT_EQ(selectWriteParameters(row.byte2, row.byte3), row.expected);
        const Answer answer = modeSense(0x05);
        ASSERT_EQ(answer.status, 0u);
        const auto page = kivscsi::findModePage(answer.data(), answer.received, 0x05);
        ASSERT_TRUE(page.has_value());
        EXPECT_EQ(page->page[1], 0x32);
        EXPECT_EQ(page->page[2], row.seenByte2);
        EXPECT_EQ(page->page[3], row.seenByte3);
    }
}

TEST_F(WriterTest, AShortModeSelectListIsRefused) {
    Bytes list(8 + 52, 0);
    list[8] = 0x05;
    list[9] = 0x32;
    EXPECT_EQ(kivscsi::KIVR_SetSenseData10(path, kDevice, 0, list.data(), 8 + 20), 0x1A00u);
}

}  // namespace
}  // namespace mmctest

// Blanking and formatting over virtual time: the drive is busy for the disc's time, reports
// its progress, and the disc changes as the operation says.
#include "WriterFixture.h"
#include "os/Thread.h"

namespace mmctest {
namespace {

constexpr uint32_t kFormatSeconds = 100;

uint16_t progressOf(const Bytes& sense) {
    return (sense[15] & 0x80) ? static_cast<uint16_t>(sense[16] << 8 | sense[17]) : 0;
}

TEST_F(WriterTest, AnImmediateFormatReportsProgressUntilItEnds) {
    DiscModel disc = sim::mmc::discOf(MediaKind::DvdMinusRw);
    disc.formatSeconds = kFormatSeconds;
    loadReady(disc);
    ASSERT_EQ(format(0x10, true), 0u);
    const struct {
        uint64_t atMs;  // since the format started
        Status unitReady;
        uint16_t progress;
    } rows[] = {
        {0, 0x0404, 0},           {25'000, 0x0404, 0x4000}, {50'000, 0x0404, 0x8000},
        {99'000, 0x0404, 0xFD70}, {99'999, 0x0404, 0xFFFF}, {100'000, 0, 0},
    };
    const uint64_t start = clock.elapsedMilliseconds();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.atMs);
        clock.advance(start + row.atMs - clock.elapsedMilliseconds());
        EXPECT_EQ(testUnitReady(), row.unitReady);
        const Bytes sense = requestSense();
        EXPECT_EQ(sense[12] << 8 | sense[13], static_cast<int>(row.unitReady));
        EXPECT_NEAR(progressOf(sense), row.progress, 1);
    }
    EXPECT_EQ(currentProfile(), 0x0013);  // restricted overwrite now
    EXPECT_EQ(discInformation().discStatus, 2);
}

TEST_F(WriterTest, ABlankOnAWorkerKeepsTheDriveBusyForItsTime) {
    DiscModel disc = sim::mmc::discOf(MediaKind::CdRw);
    disc.minimalBlankSeconds = 30;
    loadReady(disc);
    ASSERT_EQ(selectWriteParameters(0x41, 0x04), 0u);
    ASSERT_EQ(write(0, 10, 1), 0u);
    ASSERT_EQ(kivscsi::CloseFirstSession(path, kDevice, 2), 0u);
    ASSERT_EQ(discInformation().discStatus, 2);

    Status blankStatus = 0xFFFF;
    uint64_t blankMs = 0;
    os::Thread worker([&] {
        const uint64_t start = clock.elapsedMilliseconds();
        blankStatus = kivscsi::Blank(path, kDevice, 1);
        blankMs = clock.elapsedMilliseconds() - start;
    });
    int busyPolls = 0;
    for (int second = 1; second < 30; ++second) {
        os::sleepMilliseconds(1000);
        if (testUnitReady() == 0x0407) ++busyPolls;
    }
    worker.join();
    EXPECT_EQ(blankStatus, 0u);
    EXPECT_EQ(blankMs, 30'000u);
    EXPECT_EQ(busyPolls, 29);
    EXPECT_EQ(discInformation().discStatus, 0);
    EXPECT_EQ(writer->snapshot().nextWritable, 0u);
}

TEST_F(WriterTest, BlankAndFormatAcceptOnlyWhatTheDiscAllows) {
    const struct {
        MediaKind kind;
        bool blank;  // else format
        uint8_t type;
        Status expected;
    } rows[] = {
        {MediaKind::CdRw, true, 0, 0},
        {MediaKind::CdRw, true, 2, 0x2400},
        {MediaKind::DvdPlusR, true, 1, 0x3005},
        {MediaKind::DvdPlusRw, false, 0x26, 0},
        {MediaKind::DvdPlusRw, false, 0x10, 0x2600},
        {MediaKind::CdR, false, 0x00, 0x3006},
        {MediaKind::DvdRam, false, 0x01, 0},
        {MediaKind::BdR, false, 0x32, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        DiscModel disc = sim::mmc::discOf(row.kind);
        disc.fullBlankSeconds = disc.formatSeconds = 1;
        loadReady(disc);
        EXPECT_EQ(row.blank ? kivscsi::Blank(path, kDevice, row.type) : format(row.type),
                  row.expected);
    }
}

// DVD+RW formats in the background from the start, BD-RE after its foreground part: the disc
// is usable meanwhile, the disc information tells the state, REQUEST SENSE the progress.
TEST_F(WriterTest, RewritableDiscsGoOnFormattingInTheBackground) {
    const struct {
        MediaKind kind;
        uint8_t formatType;
        uint32_t foregroundSeconds;
    } kinds[] = {{MediaKind::DvdPlusRw, 0x26, 0}, {MediaKind::BdRe, 0x30, 40}};
    const struct {
        uint64_t atMs;  // since the background part started
        uint8_t backgroundStatus;
        uint32_t sense;
        uint16_t progress;
    } timeline[] = {
        {0, 2, 0x000404, 0},
        {25'000, 2, 0x000404, 0x4000},
        {99'999, 2, 0x000404, 0xFFFF},
        {100'000, 3, 0, 0},
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(sim::mmc::traitsOf(kind.kind).name);
        DiscModel disc = sim::mmc::discOf(kind.kind);
        disc.formatSeconds = kind.foregroundSeconds;
        disc.backgroundFormatSeconds = 100;
        loadReady(disc);
        EXPECT_EQ(discInformation().backgroundFormatStatus, 0);
        const uint64_t sent = clock.elapsedMilliseconds();
        ASSERT_EQ(format(kind.formatType), 0u);
        const uint64_t start = clock.elapsedMilliseconds();
        EXPECT_EQ(start - sent, kind.foregroundSeconds * 1000);
        for (const auto& row : timeline) {
            SCOPED_TRACE(row.atMs);
            clock.advance(start + row.atMs - clock.elapsedMilliseconds());
            EXPECT_EQ(testUnitReady(), 0u);
            EXPECT_EQ(discInformation().backgroundFormatStatus, row.backgroundStatus);
            const Bytes sense = requestSense();
            EXPECT_EQ(uint32_t{sense[2]} << 16 | uint32_t{sense[12]} << 8 | sense[13], row.sense);
            EXPECT_NEAR(progressOf(sense), row.progress, 1);
        }

        ASSERT_EQ(format(kind.formatType), 0u);
        clock.advance(10'000);
        EXPECT_EQ(write(0, 1, 1), 0u);
        EXPECT_EQ(format(kind.formatType), 0x2C00u) << "out of sequence";
        EXPECT_EQ(kivscsi::CloseTrackSession(path, kDevice, 0, 0, false), 0u);
        clock.advance(200'000);
        EXPECT_EQ(discInformation().backgroundFormatStatus, 1) << "a stopped format stays so";
        EXPECT_EQ(progressOf(requestSense()), 0);
    }
}

TEST_F(WriterTest, StoppingABackgroundFormatIsRefusedWhereThereIsNone) {
    loadWritable(MediaKind::DvdPlusR);
    EXPECT_EQ(kivscsi::CloseTrackSession(path, kDevice, 0, 0, false), 0x2400u);
}

}  // namespace
}  // namespace mmctest

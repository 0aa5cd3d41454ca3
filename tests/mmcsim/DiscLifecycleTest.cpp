// What writing, closing tracks and sessions and finalizing do to a disc's status, sessions and
// next writable address, and where a disc accepts writes and reads.
#include <vector>

#include "WriterFixture.h"

namespace mmctest {
namespace {

enum class Step { Write10, CloseTrack, CloseSession, Finalize, MultiSession };

struct LifecycleRow {
    const char* name;
    MediaKind kind;
    std::vector<Step> steps;
    Status lastStepStatus;
    uint8_t discStatus;
    uint8_t sessionState;
    uint16_t sessions;
    uint32_t nextWritable;
};

// clang-format off
const LifecycleRow kLifecycles[] = {
    {"written CD-R", MediaKind::CdR, {Step::Write10}, 0, 1, 1, 1, 10},
    {"track closed", MediaKind::CdR, {Step::Write10, Step::CloseTrack}, 0, 1, 1, 1, 10},
    {"session closed, single session", MediaKind::CdR, {Step::Write10, Step::CloseSession}, 0, 2, 3, 1, 10},
    {"session closed, more allowed", MediaKind::CdR, {Step::MultiSession, Step::Write10, Step::CloseSession}, 0, 1, 0, 2, 10},
    {"second session written", MediaKind::DvdMinusR, {Step::MultiSession, Step::Write10, Step::CloseSession, Step::Write10}, 0, 1, 1, 2, 20},
    {"DVD+R finalized", MediaKind::DvdPlusR, {Step::Write10, Step::Finalize}, 0, 2, 3, 1, 10},
    {"BD-R track closed twice", MediaKind::BdR, {Step::Write10, Step::CloseTrack, Step::CloseTrack}, 0x2C00, 1, 1, 1, 10},
    {"close track on a blank disc", MediaKind::CdRw, {Step::CloseTrack}, 0x2C00, 0, 0, 1, 0},
    {"close empty session", MediaKind::DvdPlusR, {Step::CloseSession}, 0x2C00, 0, 0, 1, 0},
    {"write after finalizing", MediaKind::CdR, {Step::Write10, Step::Finalize, Step::Write10}, 0x2102, 2, 3, 1, 10},
    {"formatted DVD+RW stays complete", MediaKind::DvdPlusRw, {Step::Write10, Step::CloseSession}, 0, 2, 3, 1, 0},
};
// clang-format on

TEST_F(WriterTest, WritingAndClosingMoveTheDiscThroughItsStates) {
    for (const LifecycleRow& row : kLifecycles) {
        SCOPED_TRACE(row.name);
        loadWritable(row.kind);
        // BUFE with track at once on CD, incremental on DVD-R.
        const bool cd = sim::mmc::traitsOf(row.kind).family == sim::mmc::MediaFamily::Cd;
        const uint8_t writeType = cd ? 0x41 : 0x40;
        ASSERT_EQ(selectWriteParameters(writeType, 0x04), 0u);
        Status status = 0;
        for (const Step step : row.steps) {
            switch (step) {
                case Step::Write10:
                    status = write(writer->snapshot().nextWritable, 10, 0x5A);
                    break;
                case Step::CloseTrack:
                    status = kivscsi::CloseTrack(path, kDevice);
                    break;
                case Step::CloseSession:
                    status = kivscsi::CloseFirstSession(path, kDevice, 2);
                    break;
                case Step::Finalize:
                    status = kivscsi::CloseTrackSession(path, kDevice, 5, 0, false);
                    break;
                case Step::MultiSession:
                    status = selectWriteParameters(writeType, 0xC4);
                    break;
            }
        }
        EXPECT_EQ(status, row.lastStepStatus);
        const auto info = discInformation();
        EXPECT_EQ(info.discStatus, row.discStatus);
        EXPECT_EQ(info.lastSessionState, row.sessionState);
        EXPECT_EQ(info.sessions, row.sessions);
        EXPECT_EQ(writer->snapshot().nextWritable, row.nextWritable);
    }
}

TEST_F(WriterTest, SequentialDiscsAcceptWritesOnlyAtTheNextWritableAddress) {
    loadWritable(MediaKind::DvdPlusR, 100);
    ASSERT_EQ(write(0, 4, 1), 0u);
    const struct {
        uint32_t lba;
        uint16_t count;
        Status expected;
    } rows[] = {
        {3, 1, 0x2102},    // behind the next writable address
        {5, 1, 0x2102},    // a gap after it
        {4, 97, 0x2100},   // one past the end of the disc
        {4, 96, 0},        // exactly up to the end
        {100, 1, 0x2100},  // the disc is full
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.lba);
        EXPECT_EQ(write(row.lba, row.count, 2), row.expected);
    }
    EXPECT_EQ(writer->snapshot().nextWritable, 100u);
}

TEST_F(WriterTest, ReadsReachOnlyWhatIsRecordedOrFormatted) {
    const struct {
        MediaKind kind;
        uint32_t lba;
        Status expected;
    } rows[] = {
        {MediaKind::CdR, 4, 0},         // last recorded sector
        {MediaKind::CdR, 5, 0x2100},    // next writable address: nothing there yet
        {MediaKind::DvdPlusRw, 99, 0},  // formatted: the whole disc
        {MediaKind::DvdPlusRw, 100, 0x2100},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(sim::mmc::traitsOf(row.kind).name);
        loadWritable(row.kind, 100);
        ASSERT_EQ(write(0, 5, 7), 0u);
        Bytes data;
        EXPECT_EQ(read(row.lba, 1, true, data), row.expected);
    }
}

TEST_F(WriterTest, ReadCapacityNamesTheLastReadableSector) {
    loadWritable(MediaKind::CdR, 1000);
    kivscsi::Capacity capacity;
    ASSERT_EQ(kivscsi::ReadCapacity(path, kDevice, &capacity), 0u);
    EXPECT_EQ(capacity.lastLba, 0u);
    ASSERT_EQ(write(0, 8, 1), 0u);
    ASSERT_EQ(kivscsi::ReadCapacity(path, kDevice, &capacity), 0u);
    EXPECT_EQ(capacity.lastLba, 7u);
    EXPECT_EQ(capacity.blockLength, 2048u);
}

TEST_F(WriterTest, ReadOnlyDiscsRefuseEveryRecordingCommand) {
    loadReady(sim::mmc::discOf(MediaKind::DvdRom));
    EXPECT_EQ(write(0, 1, 1), 0x3005u);
    EXPECT_EQ(kivscsi::CloseTrack(path, kDevice), 0x3005u);
    EXPECT_EQ(kivscsi::Blank(path, kDevice, 1), 0x3005u);
    EXPECT_EQ(format(0x26), 0x3006u);
}

}  // namespace
}  // namespace mmctest

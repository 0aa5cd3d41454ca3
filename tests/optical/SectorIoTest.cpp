// Sector reads and writes and the cache flush, with their retry windows.
#include <functional>
#include <optional>

#include "OpticalDriveFixture.h"
#include "libDrive/Exceptions.h"
#include "scsi/Opcodes.h"

namespace optest {
namespace {

namespace op = kivscsi::opcode;
constexpr unsigned int kLba = 16;

class SectorIoTest : public OpticalDriveTest {
public:
    SectorIoTest() {
        loadReady(MediaKind::DvdPlusRw);
        drive->getDriveGeometry();
        writer->clearHistory();
    }
    // Plants `code` after `first` has been answered `times` times.
    void failThen(uint8_t opcode, uint16_t first, uint32_t times, uint16_t then) {
        fail(opcode, first, times);
        fail(opcode, then);
    }
};

struct ReadCase {
    const char* name;
    std::function<void(SectorIoTest&)> setup;
    bool plainRead;
    std::optional<unsigned int> error;  // ReadFailedException's code
    size_t forcedReads;
    size_t plainReads;
    uint64_t elapsedMs;
};

TEST_F(SectorIoTest, ReadsRetryForTenSecondsFallBackFromFuaAndStopWhenTheDeviceIsGone) {
    const ReadCase cases[] = {
        {"forced read", [](SectorIoTest&) {}, false, std::nullopt, 1, 0, 0},
        {"plain read", [](SectorIoTest&) {}, true, std::nullopt, 0, 1, 0},
        // Refused FUA is read plainly in the same attempt, without a pause.
        {"FUA refused", [](SectorIoTest& t) { t.fail(op::kRead12, 0x2400, 1); }, false,
         std::nullopt, 1, 1, 0},
        {"FUA always refused, plain read fails",
         [](SectorIoTest& t) {
             t.fail(op::kRead12, 0x2400, 3);
             t.fail(op::kRead10, 0x1100, 2);
         },
         false, std::nullopt, 3, 3, 200},
        {"medium error", [](SectorIoTest& t) { t.fail(op::kRead12, 0x1100); }, false, 0x1100, 100,
         0, 10000},
        {"device gone", [](SectorIoTest& t) { t.writer->disappear(); }, false, 0xAB10, 1, 0, 12000},
    };
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        writer->clearHistory();
        c.setup(*this);
        drive->readFlag = false;
        std::vector<uint8_t> buffer(2048);
        const uint64_t start = elapsedMs();
        std::optional<unsigned int> error;
        try {
            drive->readSectors(kLba, 1, buffer.data(), 2048, c.plainRead);
        } catch (const kivrlibdrive::ReadFailedException& failure) {
            EXPECT_EQ(failure.getSectorNumber(), kLba);
            error = failure.getErrorCode();
        }
        EXPECT_EQ(error, c.error);
        EXPECT_TRUE(drive->readFlag);
        EXPECT_EQ(commands(op::kRead12).size(), c.forcedReads);
        EXPECT_EQ(commands(op::kRead10).size(), c.plainReads);
        EXPECT_EQ(elapsedMs() - start, c.elapsedMs);
    }
}

TEST_F(SectorIoTest, AStopRequestEndsAReadBeforeItIsSent) {
    host.stopAfterPolls(0);
    uint8_t buffer[2048];
    EXPECT_EQ(thrownMessage<kivrlibdrive::UserAborted>(
                  [&] { drive->readSectors(kLba, 1, buffer, sizeof(buffer), false); }),
              "Test Aborted by the user during the Reading process");
    EXPECT_TRUE(commands(op::kRead12).empty());
}

struct WriteCase {
    const char* name;
    std::function<void(SectorIoTest&)> setup;
    std::optional<unsigned int> error;  // WriteFailedException's code
    size_t attempts;
    uint64_t elapsedMs;
};

TEST_F(SectorIoTest, WritesRetryForTwentySecondsOrNinetyWhileTheDriveIsBusy) {
    const WriteCase cases[] = {
        {"written", [](SectorIoTest&) {}, std::nullopt, 1, 0},
        {"written on the third try", [](SectorIoTest& t) { t.fail(op::kWrite10, 0x0C00, 2); },
         std::nullopt, 3, 200},
        {"write error", [](SectorIoTest& t) { t.fail(op::kWrite10, 0x0C00); }, 0x0C00, 200, 20000},
        {"long write in progress", [](SectorIoTest& t) { t.fail(op::kWrite10, 0x0408); }, 0x0408,
         900, 90000},
        {"operation in progress", [](SectorIoTest& t) { t.fail(op::kWrite10, 0x0407); }, 0x0407,
         900, 90000},
        // Busy past 20 s keeps the window open only while the drive says busy.
        {"busy, then an error",
         [](SectorIoTest& t) { t.failThen(op::kWrite10, 0x0407, 250, 0x0C00); }, 0x0C00, 251,
         25100},
    };
    for (const WriteCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        writer->clearHistory();
        c.setup(*this);
        drive->wroteFlag = false;
        const std::vector<uint8_t> data(2048, 0x5A);
        const uint64_t start = elapsedMs();
        std::optional<unsigned int> error;
        try {
            drive->writeSectors(kLba, 1, data.data(), 2048);
        } catch (const kivrlibdrive::WriteFailedException& failure) {
            EXPECT_EQ(failure.getSectorNumber(), kLba);
            error = failure.getErrorCode();
        }
        EXPECT_EQ(error, c.error);
        EXPECT_TRUE(drive->wroteFlag);
        EXPECT_EQ(commands(op::kWrite10).size(), c.attempts);
        EXPECT_EQ(elapsedMs() - start, c.elapsedMs);
    }
    EXPECT_TRUE(host.events().empty());
}

TEST_F(SectorIoTest, AnUnreadableTableOfContentsAsksForARerun) {
    fail(op::kWrite10, 0x5700);
    const std::vector<uint8_t> data(2048, 0x5A);
    EXPECT_EQ(thrownMessage<kivrlibdrive::InvalidMediaException>(
                  [&] { drive->writeSectors(kLba, 1, data.data(), 2048); }),
              "The drive could not read the Table of Contents from the Media.");
    const auto events = host.events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].key, "RERUN_TEST");
    EXPECT_EQ(events[0].severity, quel5::Severity::INFORMATIVE);
    EXPECT_EQ(events[0].source, kSource);
    EXPECT_EQ(events[0].line, 1114);
}

TEST_F(SectorIoTest, AWrittenSectorReadsBack) {
    const std::vector<uint8_t> data(2048, 0xBD);
    drive->writeSectors(kLba, 1, data.data(), 2048);
    drive->flushCache();
    EXPECT_EQ(writer->mediumSector(kLba), data);
    std::vector<uint8_t> back(2048);
    drive->readSectors(kLba, 1, back.data(), 2048, false);
    EXPECT_EQ(back, data);
}

struct FlushCase {
    const char* name;
    uint32_t failures;  // 0xFFFFFFFF: every attempt fails
    size_t failedLines;
    bool passed;
    uint64_t elapsedMs;
};

TEST_F(SectorIoTest, FlushRetriesForTwentySeconds) {
    const FlushCase cases[] = {
        {"flushed", 0, 0, true, 0},
        {"flushed on the third try", 2, 2, true, 200},
        {"never flushed", 0xFFFFFFFF, 200, false, 20000},
    };
    for (const FlushCase& c : cases) {
        SCOPED_TRACE(c.name);
        writer->clearFaults();
        clearLog();
        if (c.failures != 0)
            fail(op::kSynchronizeCache, 0x0300, c.failures == 0xFFFFFFFF ? 0 : c.failures);
        const uint64_t start = elapsedMs();
        const auto status =
            thrownStatus<kivrlibdrive::TestFailedException>([&] { drive->flushCache(); });
        EXPECT_EQ(status, c.passed ? std::nullopt : std::optional<unsigned int>(0x0300));
        std::vector<std::string> expected(c.failedLines, "1208 Failed Synchronize cache ");
        if (c.passed) expected.push_back("1204 Passed Synchronize cache ");
        EXPECT_EQ(logged(2), expected);
        EXPECT_EQ(elapsedMs() - start, c.elapsedMs);
    }
}

}  // namespace
}  // namespace optest

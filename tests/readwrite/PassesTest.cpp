// The write and verify passes: stop requests, every write and read error code, the error limit
// carried from writing to verifying, the re-read from the disc after a cached mismatch, the
// usage marker written to sector 0.
#include <algorithm>
#include <functional>

#include "ScriptedOptical.h"
#include "libDrive/Exceptions.h"

namespace rwtest {
namespace {

using R = quel5::TestResult;
using Calls = std::vector<std::string>;

const std::string kCrcWriting =
    "The Test has failed because of 0x0803: LOGICAL UNIT COMMUNICATION CRC ERROR (ULTRA-DMA/32) "
    "while writing to sector ";
const std::string kCrcReading =
    "The Test has failed because of 0x0803: LOGICAL UNIT COMMUNICATION CRC ERROR (ULTRA-DMA/32) "
    "while reading from sector ";

class PassesTest : public ReadWriteFixture {};

TEST_F(PassesTest, EachWayAPassEndsGivesItsResultEventAndLog) {
    const auto writeFails = [&](uint64_t sector, unsigned int code) {
        return
            [this, sector, code] { failOnce("writeSectors", WriteFailedException(sector, code)); };
    };
    const auto readFails = [&](uint64_t sector, unsigned int code) {
        return [this, sector, code] { fail("readSectors", ReadFailedException(sector, code)); };
    };
    // Plain reads of sector 1 come from a stale cache; `fromDisc` says whether the disc is right.
    const auto staleCache = [&](bool fromDisc) {
        return [this, fromDisc] {
            drive.readHook = [fromDisc](unsigned int lba, bool plain, unsigned char* data) {
                if (lba == 1 && (plain || !fromDisc)) data[7] ^= 0xFF;
            };
        };
    };
    const std::string stopped = "closeTrack(0) unlockTray releaseExclusiveAccess";
    const std::string failed = "unlockTray releaseExclusiveAccess";
    const std::string crc = "COMMUNICATION_CRC_ERROR";
    struct Case {
        std::function<void()> setup;
        R result;
        std::string events;
        std::string line;  // logged at priority 4
        std::string tail;  // the last drive calls
        unsigned int maxErrors = 0;
    };
    const Case cases[] = {
        {[&] { host.stopAfterPolls(1); }, R::USERABORTED, "", "",
         "writeSectors(0) flushCache " + stopped},
        {[&] { host.stopAfterPolls(4); }, R::USERABORTED, "", "",
         "flushCache closeTrack(0) " + stopped},
        {writeFails(0, 0x0803), R::FAIL, crc, "1372 " + kCrcWriting, "writeSectors(0) " + failed},
        {writeFails(10, 0x0803), R::FAIL, crc, "1372 " + kCrcWriting.substr(10), failed},
        {writeFails(kCrcWriting.size(), 0x0803), R::FAIL, crc, "1372 ", failed},
        {writeFails(2, 0x0408), R::TIMEDOUT, "LONG_WRITE_IN_PROGRESS_ERROR",
         "1385 The test never recovered from the LONG WRITE IN PROGRESS.",
         "writeSectors(0) releaseExclusiveAccess"},
        {writeFails(0, 0x5700), R::INCORRECTMEDIA, "INCORRECT_MEDIA_INSERTED", "1360 ",
         "writeSectors(0) releaseExclusiveAccess unlockTray ejectDisc"},
        {writeFails(3, 0x0C00), R::FAIL, "DRIVE_SCSI_WRITE_FAILURE",
         "804 Failed to write to sector 3: 3072", "writeSectors(0) flushCache " + failed},
        // The write error counts on into the verify pass, whose mismatch is the second error.
        {writeFails(3, 0x0C00), R::FAIL, "DRIVE_SCSI_WRITE_FAILURE DATA_COMPARE_FAILED",
         "1372 Data Comparison Failed", failed, 1},
        {readFails(0, 0x0803), R::FAIL, crc, "1372 " + kCrcReading, "readSectors(0) " + failed},
        {readFails(1, 0x1100), R::FAIL, "RW_TEST_READ_ERROR",
         "939 Failed to read from sector 1: 4352", "readSectors(0) " + failed},
        {readFails(1, 0x1100), R::FAIL, "RW_TEST_READ_ERROR RW_TEST_READ_ERROR RW_TEST_READ_ERROR",
         "1372 The test has failed because of too may read errors.", failed, 2},
        {staleCache(true), R::PASS, "",
         "951 Data in the cache did not match the write buffer at sector 1",
         "readSectors(0) readSectors(1) readSectorsFUA(1) readSectors(2) readSectors(3) "
         "unlockTray"},
        {staleCache(false), R::FAIL, "DATA_COMPARE_FAILED", "1372 Data Comparison Failed",
         "readSectors(1) readSectorsFUA(1) " + failed},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line + " / " + c.tail);
        drive.calls.clear(), drive.faults.clear(), drive.disc.clear();
        drive.readHook = nullptr;
        host.clear();
        host.neverStop();
        c.setup();
        OpenTest test(drive, parameters, strings);
        test.maxErrors = c.maxErrors;
        EXPECT_EQ(test.Run(), c.result);
        EXPECT_EQ(eventKeys(), c.events);
        EXPECT_TRUE(c.line.empty() || wasLogged(4, c.line)) << c.line;
        const auto count = static_cast<std::size_t>(std::count(c.tail.begin(), c.tail.end(), ' '));
        EXPECT_EQ(lastCalls(count + 1), c.tail);
    }
    const auto compared = host.eventsWithKey("DATA_COMPARE_FAILED");
    ASSERT_EQ(compared.size(), 1u);
    EXPECT_EQ(compared[0].get(L"TestSector").valueUint64(), 1u);
    EXPECT_EQ(compared[0].source, "libDrive/ReadWriteTest");
    EXPECT_EQ(compared[0].line, 955);
}

// Each row: the first bytes of sector 0 as found, and as written back (the count found + 1).
// A speed is shown 176 above what was asked (the drive's maximum not at all); a speed the drive
// fell short of is reported and the run goes on; a refused one ends it.
TEST_F(PassesTest, SpeedChangesAreShownAndFailuresReportedOrFatal) {
    const struct {
        const char* name;
        unsigned int speed;
        std::function<void()> fault;
        std::string event;     // "KEY Name=Value ...", or ""
        std::string progress;  // the progress text, or ""
        bool throws;
    } cases[] = {
        {"a speed", 1000, nullptr, "", "RUNNING_AT_SPEED{WriteSpeedIndex=1176,WriteSpeed=6}",
         false},
        {"the maximum", 0xFFFF, nullptr, "", "", false},
        {"fell short", 1000, [&] { fail("setSpeed", FailedSettingDriveSpeed(1385u, 1108u)); },
         "ERROR_SPEED_NOT_REACHED RequestedSpeed=1385 ActualSpeed=1108",
         "RUNNING_AT_SPEED{WriteSpeedIndex=1176,WriteSpeed=6}", false},
        {"refused", 1000, [&] { fail("setSpeed", TestFailedException(0x2400u)); },
         "ERROR_SETTING_SPEED ScsiError=2400", "", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        drive.faults.clear();
        host.clear();
        if (c.fault) c.fault();
        OpenTest test(drive, parameters, strings);
        test.currentSpeed = 7;
        bool thrown = false;
        try {
            test.setSpeed(c.speed);
        } catch (const TestFailedException&) {
            thrown = true;
        }
        EXPECT_EQ(thrown, c.throws);
        EXPECT_EQ(test.currentSpeed, c.throws ? 7u : c.speed);
        std::string event;
        for (const auto& raised : host.events()) {
            event = raised.key;
            for (const auto& [name, value] : raised.variables)
                event += " " + name.toUtf8() + "=" + value.toString().toUtf8();
        }
        EXPECT_EQ(event, c.event);
        const auto progress = host.progressReports();
        EXPECT_EQ(progress.empty() ? "" : progress.back().text, c.progress);
    }
}

TEST_F(PassesTest, TheUsageCountIsReadFromSectorZeroAndWrittenBackRaised) {
    using Bytes = std::vector<unsigned char>;
    const Bytes fill(6, 0xBD);
    const struct {
        bool limit, readFails;
        Bytes found, written;
    } cases[] = {
        {true, false, {0x00, 0x05, 0x00, 0x05, 0xBD, 0xBD}, {0x00, 0x06, 0x00, 0x06, 0xBD, 0xBD}},
        {true, false, {0x01, 0xFF, 0x01, 0xFF, 0xBD, 0xBD}, {0x02, 0x00, 0x02, 0x00, 0xBD, 0xBD}},
        {true, false, fill, {0x00, 0x01, 0x00, 0x01, 0xBD, 0xBD}},
        {true, false, {0x00, 0x05, 0x00, 0x06, 0xBD, 0xBD}, {0x00, 0x01, 0x00, 0x01, 0xBD, 0xBD}},
        {true, true, {0x00, 0x05, 0x00, 0x05, 0xBD, 0xBD}, {0x00, 0x01, 0x00, 0x01, 0xBD, 0xBD}},
        {false, false, {0x00, 0x05, 0x00, 0x05, 0xBD, 0xBD}, fill},
    };
    for (const auto& c : cases) {
        drive.disc.clear(), drive.faults.clear();
        drive.disc[0] = c.found;
        drive.disc[0].resize(2048, 0xBD);
        if (c.readFails) failOnce("readSectors", ReadFailedException(0, 0x1100));
        drive.empty = false;
        parameters.limitUsage = c.limit;
        parameters.sectors = 2;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), R::PASS);
        EXPECT_EQ(Bytes(drive.disc[0].begin(), drive.disc[0].begin() + 6), c.written);
        EXPECT_EQ(drive.disc[1], Bytes(2048, 0xBD));
    }
    EXPECT_TRUE(wasLogged(4, "1254 CHECKING FOR USAGE LIMIT: Read Failed Exception"));
}

}  // namespace
}  // namespace rwtest

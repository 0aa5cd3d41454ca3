// CCacheTest on a simulated drive: the 640 blocks of its zone with their fill bytes, the
// write-back after a mismatch, the error limit, stops, the time-left estimate and the data left.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "DestructiveTestSupport.h"
#include "libDrive/CacheTest.h"

namespace {

using drivetests::driveOf;
using drivetests::WriteRecordingDrive;
using quel5::TestResult;

using drivetests::Parameters;

const char* const kFills[] = {"00", "ff", "aa", "55", "34"};

class CachePass : public drivetests::DestructiveFixture<kivrlibdrive::CCacheTest> {
protected:
    CachePass() : DestructiveFixture("libDrive/CacheTest") {}

    // The cache test wants an amount to test, whichever.
    void setAll(const Parameters& parameters) {
        DestructiveFixture::setAll(parameters);
        set("NumberOfSeeks", "1");
    }
};

struct ZoneCase {
    const char* name;
    uint64_t total;
    Parameters parameters;
    bool preserve;
    uint64_t zoneStart;
};

TEST_F(CachePass, WritesFiveFillsOverTheZoneBelowTheEnd) {
    // clang-format off
    const ZoneCase cases[] = {
        {"whole drive", 40000, {}, true, 7232},
        {"end below the capacity, start ignored, data not kept", 100000, {{"StartRange", "90000"}, {"EndRange", "MAX-1000"}}, false, 66232},
    };
    // clang-format on
    for (const ZoneCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(c.parameters);
        set("PreserveData", c.preserve ? "true" : "false");
        WriteRecordingDrive drive(device, driveOf(c.total));
        const std::vector<unsigned char> before = drive.contents(c.zoneStart, 32768);
        drive.clearOperations();

        EXPECT_EQ(run(drive), TestResult::PASS);

        std::vector<std::string> writes;
        std::vector<unsigned> percents;
        for (unsigned pass = 0; pass < 5; ++pass) {
            for (unsigned block = 0; block < 128; ++block) {
                const std::string sector = std::to_string(c.zoneStart + block * 256);
                writes.push_back("write " + sector + " " + kFills[pass]);
                writes.push_back("write " + sector + (c.preserve ? " data" : " 00"));
                percents.push_back(pass * 20 + block * 100 / 640);
            }
        }
        percents.push_back(100);
        EXPECT_EQ(drive.callsStartingWith("write"), writes);
        EXPECT_EQ(host.percents(), percents);
        for (const sim::Operation& operation : drive.operations()) {
            EXPECT_EQ(operation.sectors, 256u) << "the whole block is transferred";
            EXPECT_EQ(operation.requestedCount, 1u);
        }
        EXPECT_EQ(drive.operations().size(), 640u * (c.preserve ? 4 : 3));
        const std::vector<testsupport::ProgressReport> progress = host.progressReports();
        ASSERT_EQ(progress.size(), 640u);
        EXPECT_EQ(progress[0].intervalMs, 128.0);
        EXPECT_EQ(progress[129].get("ReadSector").valueUint64(), c.zoneStart + 256);
        EXPECT_EQ(progress[129].get("EndSector").valueUint64(), c.zoneStart + 32768);
        if (c.preserve) {
            EXPECT_EQ(drive.contents(c.zoneStart, 32768), before);
        }
        EXPECT_EQ(drive.counters().lock, 1u);
        EXPECT_EQ(drive.counters().unLock, 1u);
        EXPECT_EQ(drive.counters().lockTray + drive.counters().unlockTray, 0u)
            << "the tray is left alone";
    }
}

TEST_F(CachePass, ARangeEndingBelowOneZoneIsRefused) {
    setAll({{"EndRange", "32767"}});
    WriteRecordingDrive drive(device, driveOf(40000));

    EXPECT_EQ(run(drive), TestResult::BADPARAMS);

    EXPECT_EQ(eventLines(), std::vector<std::string>{"TOTAL_SECTOR_GREATER_THAN_ZERO:138"});
    EXPECT_TRUE(drive.callsStartingWith("write").empty());
    EXPECT_EQ(drive.counters().unLock, 1u);
}

struct FaultCase {
    const char* name;
    Parameters parameters;
    std::function<void(WriteRecordingDrive&)> arrange;
    TestResult result;
    std::vector<std::string> events;
    std::size_t writes;
};

TEST_F(CachePass, FailedBlocksAreCountedAgainstTheRawLimit) {
    // One zone, sectors 0 to 32767; data kept.
    const auto fault = [](uint64_t sector, sim::SectorFault f) {
        return [sector, f](WriteRecordingDrive& d) { d.injectFault(sector, f); };
    };
    const std::string mismatch = "MSG_PATTERN_MISMATCH_ERROR:374";
    const std::string limit = "MAX_ERRORS_EXCEEDED:204";
    const std::string restore = "UNABLE_TO_RESTORE_SECTOR:395";
    // clang-format off
    const FaultCase cases[] = {
        {"mismatch, then the write-back", {{"MaxErrors", "2"}}, fault(300, sim::SectorFault::Forgetful), TestResult::FAIL, {mismatch, mismatch, limit}, 256 + 4},
        {"limit 0 stops at the first failed block", {{"MaxErrors", "0"}}, fault(300, sim::SectorFault::Forgetful), TestResult::FAIL, {mismatch, limit}, 4},
        {"a refused fill is not written back", {{"MaxErrors", "2"}}, fault(0, sim::SectorFault::WriteFails), TestResult::FAIL, {limit}, 1 + 254 + 1},
        {"a save read ends the test", {{"MaxErrors", "10"}}, fault(5000, sim::SectorFault::ReadInternalError), TestResult::INTERNALERROR, {}, 19 * 2},
        {"a failed write-back counts", {{"MaxErrors", "2"}},
         // The block keeps the fill of pass 0 when its write-back is refused: refuse every second write.
         [](WriteRecordingDrive& d) { d.refuseWrite = [n = 0](uint64_t s, const std::string&) mutable { return s == 512 && ++n % 2 == 0; }; },
         TestResult::FAIL, {restore, restore, limit}, 256 + 6},
        {"volumes cannot be locked", {}, [](WriteRecordingDrive& d) { d.switches().lockFails = true; }, TestResult::DEVICEBUSY, {"DeviceBusy@libDrive/Drive"}, 0},
    };
    // clang-format on
    for (const FaultCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(c.parameters);
        set("PreserveData", "true");
        WriteRecordingDrive drive(device, driveOf(32768));
        c.arrange(drive);

        EXPECT_EQ(run(drive), c.result);

        EXPECT_EQ(eventLines(), c.events);
        EXPECT_EQ(drive.callsStartingWith("write").size(), c.writes);
        EXPECT_EQ(drive.counters().unLock, c.result == TestResult::DEVICEBUSY ? 0u : 1u);
        EXPECT_EQ(host.lastPercent(),
                  c.result == TestResult::FAIL ? std::optional<unsigned>(100) : host.lastPercent());
    }
}

TEST_F(CachePass, EventsNameTheBlockAndTheTest) {
    setAll({{"MaxErrors", "2"}, {"PreserveData", "true"}});
    WriteRecordingDrive drive(device, driveOf(32768));
    drive.injectFault(1000, sim::SectorFault::Forgetful);

    EXPECT_EQ(run(drive), TestResult::FAIL);

    const std::string mismatch = "ERROR MSG_PATTERN_MISMATCH_ERROR@libDrive/CacheTest";
    EXPECT_EQ(
        host.eventSummaries(),
        (std::vector<std::string>{mismatch + "{TestSector=768}", mismatch + "{TestSector=768}",
                                  "ERROR MAX_ERRORS_EXCEEDED@libDrive/CacheTest{MaxError=2}"}))
        << "the block's first sector";
    EXPECT_EQ(drive.callsStartingWith("write 768 ").size(), 4u) << "each fill written back";

    setAll({{"PreserveData", "true"}});
    WriteRecordingDrive refusing(device, driveOf(32768));
    refusing.refuseWrite = [](uint64_t, const std::string& f) { return f == "data"; };
    host.stopAfterPolls(0);
    EXPECT_EQ(run(refusing), TestResult::USERABORTED);
    EXPECT_EQ(host.eventSummaries(),
              std::vector<std::string>{"WARNING UNABLE_TO_RESTORE_SECTOR@libDrive/CacheTest"
                                       "{TestName=CACHE_TEST,TestSector=0,EndSector=32768}"});
    EXPECT_EQ(host.events()[0].line, 321);
}

TEST_F(CachePass, AStopWritesTheSavedBlockBack) {
    const struct {
        const char* name;
        bool preserve;
        unsigned pollsBeforeStop;
        std::vector<std::string> writes;
    } cases[] = {
        {"before the first fill", true, 0, {"write 0 data"}},
        {"after the first block", true, 1, {"write 0 00", "write 0 data"}},
        {"in the second block", true, 2, {"write 0 00", "write 0 data", "write 256 data"}},
        {"nothing saved, nothing written", false, 0, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        setAll({{"PreserveData", c.preserve ? "true" : "false"}});
        WriteRecordingDrive drive(device, driveOf(32768));
        const std::vector<unsigned char> before = drive.contents(0, 512);
        host.stopAfterPolls(c.pollsBeforeStop);

        EXPECT_EQ(run(drive), TestResult::USERABORTED);

        EXPECT_EQ(drive.callsStartingWith("write"), c.writes);
        EXPECT_EQ(drive.counters().unLock, 1u);
        EXPECT_EQ(drive.contents(0, 512), before);
    }
}

TEST_F(CachePass, EstimatesFromTheLastHundredBlocksWithTheBlockIndexAdded) {
    // Every block costs 3 s (write, read, write-back at 1 s each), so every block reports.
    setAll({{"PreserveData", "false"}});
    sim::SimulatedDriveConfig config = driveOf(32768, 512, 1000);
    config.cost.perWriteMs = 1000;
    config.switches.provideEstimatedTime = true;
    config.recordOperations = false;
    WriteRecordingDrive drive(device, config);
    host.stopAfterPolls(258);  // stops in block 1 of the second pass

    EXPECT_EQ(run(drive), TestResult::USERABORTED);

    const std::vector<unsigned> left = host.timesLeft();
    ASSERT_EQ(left.size(), 128u);
    const struct {
        std::size_t report;
        unsigned seconds;
    } cases[] = {
        {0, 3000 * 513 / 100 / 1000},      // pass 0, block 1: one block timed
        {98, 297000 * 611 / 100 / 1000},   // block 99: 99 blocks timed
        {126, 300000 * 639 / 100 / 1000},  // block 127: the ring is full
        {127, 300000 * 384 / 100 / 1000},  // pass 1, block 0
    };
    for (const auto& c : cases) {
        EXPECT_EQ(left[c.report], c.seconds) << "report " << c.report;
    }
    EXPECT_TRUE(wasLogged("libDrive.CacheTest", 1, "234  Estimated Time Left 15"));
}

}  // namespace

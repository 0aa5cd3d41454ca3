// CPatternTest on a simulated drive: the writes and reads per sector, sector 0, the write-back
// and the restore on a stop, failures, the error limit, and the data left on the drive.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "DestructiveTestSupport.h"
#include "libDrive/PatternTest.h"

namespace {

using drivetests::driveOf;
using drivetests::WriteRecordingDrive;
using quel5::TestResult;

using drivetests::Parameters;

const std::vector<std::string> kFills = {"ff", "00", "f0", "0f", "aa", "55", "80", "40", "20",
                                         "10", "08", "04", "02", "01", "11", "22", "44", "88"};

// What testing `sector` with the first `patterns` fills asks of the drive when nothing fails.
std::vector<std::string> sectorCalls(uint64_t sector, std::size_t patterns, bool preserve) {
    const std::string s = std::to_string(sector);
    std::vector<std::string> calls;
    if (preserve) calls.push_back("read " + s);
    for (std::size_t i = 0; i < patterns; ++i) {
        calls.push_back("write " + s + " " + kFills[i]);
        calls.push_back("read " + s);
    }
    // The saved data, or zeros when nothing was saved.
    calls.push_back("write " + s + (preserve ? " data" : " 00"));
    return calls;
}

// A pass over sectors [start, end) in `seeks` steps with `patterns` patterns.
Parameters passOver(const char* start, const char* end, const char* seeks, const char* patterns,
                    bool preserve) {
    return {{"StartRange", start},
            {"EndRange", end},
            {"NumberOfSeeks", seeks},
            {"NumberOfPatterns", patterns},
            {"PreserveData", preserve ? "true" : "false"}};
}

class PatternPass : public drivetests::DestructiveFixture<kivrlibdrive::CPatternTest> {
protected:
    PatternPass() : DestructiveFixture("libDrive/PatternTest") {}
};

struct WalkCase {
    const char* name;
    Parameters parameters;
    std::size_t patterns;
    bool preserve;
    std::vector<uint64_t> sectors;
    std::vector<unsigned> percents;
};

TEST_F(PatternPass, WritesEveryPatternAndWritesTheSectorBack) {
    // clang-format off
    const WalkCase cases[] = {
        {"sector 0 is replaced by sector 1", {{"StartRange", "0"}, {"EndRange", "3"}, {"NumberOfSeeks", "3"}, {"NumberOfPatterns", "2"}, {"PreserveData", "true"}}, 2, true, {1, 2}, {33, 66, 100}},
        {"jump of five, data not kept", {{"StartRange", "10"}, {"EndRange", "20"}, {"NumberOfSeeks", "2"}, {"NumberOfPatterns", "1"}, {"PreserveData", "false"}}, 1, false, {10, 15}, {0, 50, 100}},
        {"no patterns: only the write-back", {{"StartRange", "100"}, {"EndRange", "102"}, {"NumberOfSeeks", "2"}, {"NumberOfPatterns", "0"}, {"PreserveData", "true"}}, 0, true, {100, 101}, {0, 50, 100}},
        {"more patterns than the table has", {{"StartRange", "50"}, {"EndRange", "51"}, {"NumberOfSeeks", "1"}, {"NumberOfPatterns", "25"}}, 18, false, {50}, {0, 100}},
        {"a range of sector 0 alone writes nothing", {{"StartRange", "0"}, {"EndRange", "1"}, {"NumberOfSeeks", "1"}, {"NumberOfPatterns", "3"}, {"PreserveData", "true"}}, 3, true, {}, {100}},
    };
    // clang-format on
    for (const WalkCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(c.parameters);
        WriteRecordingDrive drive(device, driveOf(200));

        EXPECT_EQ(run(drive), TestResult::PASS);

        std::vector<std::string> expected = {"lock", "volumes", "prepare"};
        for (const uint64_t sector : c.sectors) {
            for (const std::string& call : sectorCalls(sector, c.patterns, c.preserve))
                expected.push_back(call);
        }
        for (const char* call : {"release", "unlock", "pass?"}) expected.push_back(call);
        EXPECT_EQ(drive.calls, expected);
        EXPECT_EQ(host.percents(), c.percents);
        const std::vector<testsupport::ProgressReport> progress = host.progressReports();
        ASSERT_EQ(progress.size(), c.sectors.size()) << "one progress offer per sector";
        for (std::size_t i = 0; i < progress.size(); ++i) {
            EXPECT_EQ(progress[i].key, "READ_SECTOR");
            EXPECT_EQ(progress[i].intervalMs, 1000.0);
            EXPECT_EQ(progress[i].get("ReadSector").valueUint64(), c.sectors[i]);
        }
        EXPECT_TRUE(eventLines().empty());
    }
}

struct FaultCase {
    const char* name;
    Parameters parameters;
    std::function<void(WriteRecordingDrive&)> arrange;
    uint32_t bytesPerSector;
    TestResult result;
    std::vector<std::string> events;
    std::vector<std::string> writes;  // every write, in order
};

TEST_F(PatternPass, FailuresAreCountedAcrossSectorsUpToTheLimit) {
    // Sectors 1 to 3, two patterns, data kept unless said otherwise.
    Parameters base = passOver("1", "4", "3", "2", true);
    base.emplace_back("MaxErrors", "10");
    const auto with = [&base](Parameters more) {
        Parameters all = base;
        all.insert(all.end(), more.begin(), more.end());
        return all;
    };
    const auto fault = [](std::vector<uint64_t> sectors, sim::SectorFault f) {
        return [sectors, f](WriteRecordingDrive& d) {
            for (uint64_t s : sectors) d.injectFault(s, f);
        };
    };
    const std::vector<std::string> good1 = {"write 1 ff", "write 1 00", "write 1 data"};
    const std::vector<std::string> good3 = {"write 3 ff", "write 3 00", "write 3 data"};
    const auto join = [](std::vector<std::vector<std::string>> parts) {
        std::vector<std::string> all;
        for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
        return all;
    };
    // clang-format off
    const FaultCase cases[] = {
        {"pattern write fails", base, fault({2}, sim::SectorFault::WriteFails), 512, TestResult::FAIL, {}, join({good1, {"write 2 ff"}, good3})},
        {"save read fails", base, fault({2}, sim::SectorFault::ReadFails), 512, TestResult::FAIL, {}, join({good1, good3})},
        {"read-back fails, nothing saved", with({{"PreserveData", "false"}}), fault({2}, sim::SectorFault::ReadFails), 512, TestResult::FAIL, {},
         {"write 1 ff", "write 1 00", "write 1 00", "write 2 ff", "write 3 ff", "write 3 00", "write 3 00"}},
        {"mismatch leaves the pattern", base, fault({2}, sim::SectorFault::Forgetful), 512, TestResult::FAIL, {"MSG_PATTERN_MISMATCH_ERROR:401"}, join({good1, {"write 2 ff"}, good3})},
        {"save read ends the test", base, fault({2}, sim::SectorFault::ReadInternalError), 512, TestResult::INTERNALERROR, {}, good1},
        {"limit reached", with({{"MaxErrors", "2"}}), fault({1, 2}, sim::SectorFault::WriteFails), 512, TestResult::FAIL, {"MAX_ERRORS_EXCEEDED:222"}, {"write 1 ff", "write 2 ff"}},
        {"limit 0 stops at the first failure", with({{"MaxErrors", "0"}}), fault({2}, sim::SectorFault::Forgetful), 512, TestResult::FAIL,
         {"MSG_PATTERN_MISMATCH_ERROR:401", "MAX_ERRORS_EXCEEDED:222"}, join({good1, {"write 2 ff"}})},
        {"under the limit every sector is tested", with({{"MaxErrors", "3"}}), fault({1, 3}, sim::SectorFault::WriteFails), 512, TestResult::FAIL, {},
         {"write 1 ff", "write 2 ff", "write 2 00", "write 2 data", "write 3 ff"}},
        {"failed write-back of a middle sector", base,
         [](WriteRecordingDrive& d) { d.refuseWrite = [](uint64_t s, const std::string& f) { return s == 2 && f == "data"; }; },
         512, TestResult::PASS, {"UNABLE_TO_RESTORE_SECTOR:423"}, join({good1, {"write 2 ff", "write 2 00", "write 2 data"}, good3})},
        {"failed write-back of the last sector", base,
         [](WriteRecordingDrive& d) { d.refuseWrite = [](uint64_t s, const std::string& f) { return s == 3 && f == "data"; }; },
         512, TestResult::FAIL, {"UNABLE_TO_RESTORE_SECTOR:423"}, join({good1, {"write 2 ff", "write 2 00", "write 2 data"}, good3})},
        {"write-back ends the test", base,
         [](WriteRecordingDrive& d) {
             d.refusal = TestResult::INTERNALERROR;
             d.refuseWrite = [](uint64_t s, const std::string& f) { return s == 1 && f == "data"; };
         },
         512, TestResult::INTERNALERROR, {}, good1},
        {"volumes cannot be locked", base, [](WriteRecordingDrive& d) { d.switches().lockFails = true; }, 512, TestResult::DEVICEBUSY, {"DeviceBusy@libDrive/Drive"}, {}},
        {"sector size 0", base, [](WriteRecordingDrive&) {}, 0, TestResult::INTERNALERROR, {"MSG_ERROR_ALLOCATING_MEMORY:304"}, {}},
    };
    // clang-format on
    for (const FaultCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(c.parameters);
        WriteRecordingDrive drive(device, driveOf(10, c.bytesPerSector));
        c.arrange(drive);

        EXPECT_EQ(run(drive), c.result);

        EXPECT_EQ(eventLines(), c.events);
        EXPECT_EQ(drive.callsStartingWith("write"), c.writes);
        EXPECT_EQ(drive.counters().lockTray, 1u);
        EXPECT_EQ(drive.counters().unlockTray, 1u);
        const bool locked = c.result != TestResult::DEVICEBUSY;
        EXPECT_EQ(drive.counters().unLock, locked ? 1u : 0u);
        if (locked) {
            const auto release = std::find(drive.calls.begin(), drive.calls.end(), "release");
            const auto unlock = std::find(drive.calls.begin(), drive.calls.end(), "unlock");
            EXPECT_LT(release, unlock) << "the volumes are given back before the tray";
        }
    }
}

TEST_F(PatternPass, EventsNameTheSectorTheLimitAndTheTest) {
    setAll(passOver("5", "9", "4", "1", true));
    set("MaxErrors", "2");
    WriteRecordingDrive drive(device, driveOf(10));
    drive.injectFault(6, sim::SectorFault::Forgetful);
    drive.injectFault(7, sim::SectorFault::Forgetful);
    drive.refuseWrite = [](uint64_t s, const std::string& f) { return s == 5 && f == "data"; };

    EXPECT_EQ(run(drive), TestResult::FAIL);

    const std::string source = "@libDrive/PatternTest";
    EXPECT_EQ(
        host.eventSummaries(),
        (std::vector<std::string>{"WARNING UNABLE_TO_RESTORE_SECTOR" + source +
                                      "{TestName=PATTERN_TEST,TestSector=5,EndSector=9}",
                                  "ERROR MSG_PATTERN_MISMATCH_ERROR" + source + "{TestSector=6}",
                                  "ERROR MSG_PATTERN_MISMATCH_ERROR" + source + "{TestSector=7}",
                                  "ERROR MAX_ERRORS_EXCEEDED" + source + "{MaxError=2}"}));
}

struct StopCase {
    const char* name;
    bool preserve;
    unsigned pollsBeforeStop;
    bool restoreFails;
    std::vector<std::string> writes;
    std::vector<std::string> events;
};

TEST_F(PatternPass, AStopWritesTheSavedSectorBack) {
    // Sectors 1 and 2 with three patterns: polls come before each pattern and after each sector.
    // clang-format off
    const StopCase cases[] = {
        {"before the first pattern", true, 0, false, {"write 1 data"}, {}},
        {"before the third pattern", true, 2, false, {"write 1 ff", "write 1 00", "write 1 data"}, {}},
        {"after the first sector", true, 3, false, {"write 1 ff", "write 1 00", "write 1 f0", "write 1 data"}, {}},
        {"in the second sector", true, 4, false, {"write 1 ff", "write 1 00", "write 1 f0", "write 1 data", "write 2 data"}, {}},
        {"nothing saved, nothing written back", false, 2, false, {"write 1 ff", "write 1 00"}, {}},
        {"the write-back fails", true, 1, true, {"write 1 ff", "write 1 data"}, {"UNABLE_TO_RESTORE_SECTOR:343"}},
    };
    // clang-format on
    for (const StopCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(passOver("1", "3", "2", "3", c.preserve));
        WriteRecordingDrive drive(device, driveOf(10));
        if (c.restoreFails)
            drive.refuseWrite = [](uint64_t, const std::string& f) { return f == "data"; };
        const std::vector<unsigned char> before = drive.contents(0, 10);
        host.stopAfterPolls(c.pollsBeforeStop);

        EXPECT_EQ(run(drive), TestResult::USERABORTED);

        EXPECT_EQ(drive.callsStartingWith("write"), c.writes);
        EXPECT_EQ(eventLines(), c.events);
        EXPECT_EQ(drive.counters().unLock, 1u);
        EXPECT_EQ(drive.counters().unlockTray, 1u);
        if (c.preserve && !c.restoreFails) {
            EXPECT_EQ(drive.contents(0, 10), before);
        }
    }
}

TEST_F(PatternPass, DataIsLeftAsFoundOnlyWhenPreserved) {
    for (const bool preserve : {true, false}) {
        SCOPED_TRACE(preserve ? "preserved" : "not preserved");
        setAll(passOver("0", "40", "20", "18", preserve));
        WriteRecordingDrive drive(device, driveOf(64, 4096));
        const std::vector<unsigned char> before = drive.contents(0, 64);

        EXPECT_EQ(run(drive), TestResult::PASS);

        const std::vector<unsigned char> after = drive.contents(0, 64);
        EXPECT_TRUE(drive.callsStartingWith("write 0 ").empty()) << "sector 0 is never written";
        for (uint64_t sector = 0; sector < 64; ++sector) {
            const auto first = static_cast<std::ptrdiff_t>(sector * 4096);
            const std::vector<unsigned char> now(after.begin() + first,
                                                 after.begin() + first + 4096);
            const std::vector<unsigned char> was(before.begin() + first,
                                                 before.begin() + first + 4096);
            // Tested: 1, 3, ... 39 (sector 0 became 1 and the walk went on from there).
            const bool tested = sector % 2 == 1 && sector < 40;
            if (preserve || !tested) {
                EXPECT_EQ(now, was) << "sector " << sector;
            } else {
                EXPECT_EQ(now, std::vector<unsigned char>(4096, 0)) << "sector " << sector;
            }
        }
    }
}

TEST_F(PatternPass, AFailedRunMayBeRepeatedAndAsksForQualifiedMedia) {
    const struct {
        const char* name;
        bool fails;
        bool rerun;
        bool qualifiedMediaWanted;
        unsigned passes;
        unsigned prompts;
    } cases[] = {
        {"failure, re-run, media wanted", true, true, true, 2, 1},
        {"failure without a re-run", true, false, true, 1, 1},
        {"failure, media not wanted", true, true, false, 2, 0},
        {"pass", false, true, true, 1, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(passOver("1", "3", "2", "1", false));
        WriteRecordingDrive drive(device, driveOf(10));
        if (c.fails) drive.injectFault(2, sim::SectorFault::WriteFails);
        drive.switches().rerunAllowed = c.rerun;
        drive.switches().confirmRerun = true;
        drive.switches().checkForQualifiedMedia = c.qualifiedMediaWanted;

        EXPECT_EQ(run(drive), c.fails ? TestResult::FAIL : TestResult::PASS);

        EXPECT_EQ(drive.counters().lock, c.passes);
        EXPECT_EQ(drive.counters().promptUserOnUnqualifiedMedia, c.prompts);
        const auto reruns = host.eventsWithKey("RERUN_TEST");
        EXPECT_EQ(reruns.size(), c.passes - 1);
        if (!reruns.empty()) {
            EXPECT_EQ(reruns[0].line, 85);
        }
    }
}

}  // namespace

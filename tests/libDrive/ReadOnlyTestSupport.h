// What the tests of the linear seek, random seek, funnel seek, surface scan and read/compare
// tests share on top of DriveTestSupport.h: a test whose range is set directly (to reach the
// guards that the range parameters never produce), a drive whose reads can answer scripted
// results, a script of seeds for the random seek test, and runners for tables of the ways out
// of a pass, of error counts and of stop requests.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "DriveTestSupport.h"
#include "quel5/TestResult.h"
#include "support/ErrorCases.h"

namespace drivetests {

// A range a test uses as Initialize() would have left it.
struct DirectRange {
    uint64_t start = 0;
    uint64_t end = 0;
    uint64_t jump = 1;
    uint64_t seeks = 0;
    double percent = 100.0;
};

// `Test` with Initialize() replaced: the drive's geometry is still read, the range is `range`.
template <typename Test>
class WithDirectRange : public Test {
public:
    WithDirectRange(kivrlibdrive::Drive& testedDrive, DirectRange range)
        : Test(testedDrive), range_(range) {}

protected:
    quel5::TestResult Initialize() override {
        this->totalSectors = this->drive.GetTotalSectors();
        this->bytesPerSector = this->drive.GetBytesPerSector();
        this->startSector = range_.start;
        this->endSector = range_.end;
        this->jumpCount = range_.jump;
        this->numberOfSeeks = range_.seeks;
        this->sectorPercentToTest = range_.percent;
        return quel5::TestResult::PASS;
    }

private:
    DirectRange range_;
};

// A call-recording drive whose reads can answer chosen results: the n-th read (from 1) of a
// sector answers `scripted[{sector, n}]` without touching the buffer.
class ScriptedDrive : public CallRecordingDrive {
public:
    using CallRecordingDrive::CallRecordingDrive;

    std::map<std::pair<uint64_t, unsigned>, quel5::TestResult> scripted;

    quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count, void* buffer,
                                  unsigned int bufferSize) override {
        const unsigned nth = ++readsOf_[startSector];
        const auto answer = scripted.find({startSector, nth});
        if (answer != scripted.end()) {
            calls.push_back("read " + std::to_string(startSector));
            return answer->second;
        }
        return CallRecordingDrive::ReadSectors(startSector, count, buffer, bufferSize);
    }

private:
    std::map<uint64_t, unsigned> readsOf_;
};

// The seeds the random seek test's engines get, in order; installed for the life of the object.
// After the last seed the script starts again from the first.
class SeedScript {
public:
    explicit SeedScript(std::vector<uint32_t> seeds = {});
    ~SeedScript();
    SeedScript(const SeedScript&) = delete;
    SeedScript& operator=(const SeedScript&) = delete;

    // The next draw takes the first seed of `seeds` (of the seeds already given when empty).
    static void restart(std::vector<uint32_t> seeds = {});

    // The offset the test draws from [0, span] with an engine seeded with `seed`.
    static uint64_t OffsetOf(uint32_t seed, uint64_t span);
    // A seed whose engine draws `offset` from [0, span]. REQUIRES: a small span.
    static uint32_t SeedDrawing(uint64_t offset, uint64_t span);
};

// One way out of a pass. Unset callbacks change nothing; empty parameters are the table's own.
struct ExitCase {
    const char* name = "";
    Parameters parameters = {};
    std::function<void(sim::SimulatedDriveConfig&)> configure = {};
    std::function<void(ScriptedDrive&)> arrange = {};
    std::optional<DirectRange> range = {};
    quel5::TestResult result = quel5::TestResult::PASS;
    unsigned passes = 1;                     // LockTray and UnlockTray calls each
    std::vector<std::string> events = {};    // as eventLines() gives them, or keys
    std::vector<uint64_t> reads = {};        // every sector read, in order
    std::vector<std::string> problems = {};  // the pass's log lines at priority 4, if checked
};

// Arrangements the exit tables share.
inline void noHandle(ScriptedDrive& drive) { drive.switches().invalidHandle = true; }
inline void mediaCheckFails(ScriptedDrive& drive) {
    drive.switches().needsMediaCheck = true;
    drive.switches().checkMediaResult = quel5::TestResult::NOMEDIA;
}
// A drive without a handle is refused before its tray is taken.
inline ExitCase noHandleExit() {
    return {.name = "no handle",
            .arrange = noHandle,
            .result = quel5::TestResult::NODEVICE,
            .passes = 0,
            .events = {"INVALID_DRIVE_HANDLE@libDrive/DriveTest"}};
}
inline void noSectorSize(sim::SimulatedDriveConfig& config) { config.bytesPerSector = 0; }
// Reads of `sector` end the test with an internal error.
inline std::function<void(ScriptedDrive&)> readEndsTheTest(uint64_t sector) {
    return [sector](ScriptedDrive& drive) {
        drive.injectFault(sector, sim::SectorFault::ReadInternalError);
    };
}
// Reads of `sector` fail; a re-run is allowed and confirmed, and heals the drive when `heals`.
inline std::function<void(ScriptedDrive&)> failsAndIsRerun(uint64_t sector, bool heals = false) {
    return [sector, heals](ScriptedDrive& drive) {
        drive.injectFault(sector, sim::SectorFault::ReadFails);
        drive.switches().rerunAllowed = true;
        drive.switches().confirmRerun = true;
        drive.healOnConfirmedRerun = heals;
    };
}

// A stop request after `pollsBeforeStop` polls that said go on.
struct StopCase {
    const char* name;
    unsigned pollsBeforeStop;
    Parameters limits;              // on top of the table's own parameters
    std::vector<uint64_t> failing;  // sectors whose reads fail
    quel5::TestResult result;
    std::size_t reads;  // read operations the drive saw
};

// The fixture of the tests of the hard-drive test class `TestClass`.
template <typename TestClass>
class ReadOnlyFixture : public DriveTestFixture {
protected:
    // Forgets every parameter, report, stop script, log line and seed drawn, then sets
    // `parameters`.
    void reset(const Parameters& parameters) {
        setAll(parameters);
        host.neverStop();
        SeedScript::restart();
    }
    // Runs a `TestClass` on `drive`: on the range of the parameters, or on `range` when given.
    quel5::TestResult run(kivrlibdrive::Drive& drive,
                          const std::optional<DirectRange>& range = std::nullopt) {
        if (range) {
            WithDirectRange<TestClass> test(drive, *range);
            return test.Run();
        }
        TestClass test(drive);
        return test.Run();
    }
    // Runs every case from `base` on a drive of `config`; checks the result, the tray locks, the
    // events (those raised from `source` as "KEY@line", or every key when `source` is empty),
    // the sectors read, that an internal error never reports 100 percent and, when `logger` is
    // given, its lines at priority 4. `check` adds what only one pass checks.
    void runExitCases(std::span<const ExitCase> cases, const Parameters& base,
                      const sim::SimulatedDriveConfig& config, const std::string& source,
                      const char* logger = nullptr,
                      const std::function<void(const ExitCase&, ScriptedDrive&)>& check = {}) {
        for (const ExitCase& c : cases) {
            SCOPED_TRACE(c.name);
            reset(c.parameters.empty() ? base : c.parameters);
            sim::SimulatedDriveConfig changed = config;
            if (c.configure) c.configure(changed);
            ScriptedDrive drive(device, changed);
            if (c.arrange) c.arrange(drive);

            EXPECT_EQ(run(drive, c.range), c.result);

            EXPECT_EQ(drive.counters().lockTray, c.passes);
            EXPECT_EQ(drive.counters().unlockTray, c.passes);
            EXPECT_EQ(source.empty() ? host.eventKeys() : eventLines(source), c.events);
            EXPECT_EQ(drive.readSectors(), c.reads);
            if (c.result == quel5::TestResult::INTERNALERROR) {
                EXPECT_NE(host.lastPercent(), std::optional<unsigned>(100));
            }
            if (logger != nullptr) {
                EXPECT_EQ(logged(logger, 4), c.problems);
            }
            if (check) check(c, drive);
        }
    }

    // Runs the error cases from `base` on a drive of `config` whose reads of the case's sectors
    // fail. With `endsAtHundred` every run must also end on 100 percent.
    void runErrorCases(std::span<const testsupport::ErrorCase> cases, const Parameters& base,
                       const sim::SimulatedDriveConfig& config, bool endsAtHundred = false) {
        testsupport::runErrorCases(cases, host, [&](const testsupport::ErrorCase& c) {
            reset(base);
            for (const auto& [key, text] : c.parameters) set(key, text);
            ScriptedDrive drive(device, config);
            for (const uint64_t sector : c.failing)
                drive.injectFault(sector, sim::SectorFault::ReadFails);
            const quel5::TestResult result = run(drive);
            if (endsAtHundred) {
                EXPECT_EQ(host.lastPercent(), std::optional<unsigned>(100));
            }
            return testsupport::ErrorOutcome{result, drive.operations().size()};
        });
    }

    // Runs every stop case from `base` on a drive of `config`; checks the result, the reads, one
    // poll more than went on, the final 100 percent and the tray given back. `check` adds what
    // only one pass checks.
    void runStopCases(std::span<const StopCase> cases, const Parameters& base,
                      const sim::SimulatedDriveConfig& config,
                      const std::function<void(const StopCase&, ScriptedDrive&)>& check = {}) {
        for (const StopCase& c : cases) {
            SCOPED_TRACE(c.name);
            reset(base);
            for (const auto& [key, text] : c.limits) set(key, text);
            host.stopAfterPolls(c.pollsBeforeStop);
            ScriptedDrive drive(device, config);
            for (const uint64_t sector : c.failing)
                drive.injectFault(sector, sim::SectorFault::ReadFails);

            EXPECT_EQ(run(drive), c.result);

            EXPECT_EQ(drive.operations().size(), c.reads);
            EXPECT_EQ(host.stopPolls(), c.pollsBeforeStop + 1);
            EXPECT_EQ(host.lastPercent(), std::optional<unsigned>(100));
            EXPECT_EQ(drive.counters().unlockTray, 1u);
            if (check) check(c, drive);
        }
    }

    quel5::DiagDevice device{L"sim:drive"};
};

}  // namespace drivetests

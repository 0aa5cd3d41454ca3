// What the tests of the random seek, funnel seek, surface scan and read/compare tests share on
// top of DriveTestSupport.h: a test whose range is set directly (to reach the guards that the
// range parameters never produce), a drive whose reads can answer scripted results, and a script
// of seeds for the random seek test.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DriveTestSupport.h"
#include "quel5/TestResult.h"

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

using Parameters = std::vector<std::pair<const char*, const char*>>;

// The fixture of the tests of the hard-drive test class `TestClass`.
template <typename TestClass>
class ReadOnlyFixture : public DriveTestFixture {
protected:
    // Forgets every parameter, report, stop script and log line, then sets `parameters`.
    void reset(const Parameters& parameters) {
        quel5::Registry::instance().clearAllParameters();
        host.clear();
        host.neverStop();
        clearLog();
        for (const auto& [key, text] : parameters) set(key, text);
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
    // "KEY@line" of every event raised from `source`, in order.
    std::vector<std::string> eventsFrom(const std::string& source) const {
        std::vector<std::string> found;
        for (const auto& event : host.events()) {
            if (event.source == source)
                found.push_back(event.key + "@" + std::to_string(event.line));
        }
        return found;
    }
};

// The seeds the random seek test's engines get, in order; installed for the life of the object.
// After the last seed the script starts again from the first.
class SeedScript {
public:
    explicit SeedScript(std::vector<uint32_t> seeds);
    ~SeedScript();
    SeedScript(const SeedScript&) = delete;
    SeedScript& operator=(const SeedScript&) = delete;

    // The offset the test draws from [0, span] with an engine seeded with `seed`.
    static uint64_t OffsetOf(uint32_t seed, uint64_t span);
    // A seed whose engine draws `offset` from [0, span]. REQUIRES: a small span.
    static uint32_t SeedDrawing(uint64_t offset, uint64_t span);
};

}  // namespace drivetests

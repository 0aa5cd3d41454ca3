#include "cli/TestTable.h"

#include "checksum/MediumDrive.h"
#include "libDrive/CacheTest.h"
#include "libDrive/ChecksumTest.h"
#include "libDrive/DriveTest.h"
#include "libDrive/FunnelSeekTest.h"
#include "libDrive/LinearReadCompareTest.h"
#include "libDrive/LinearSeekTest.h"
#include "libDrive/PatternTest.h"
#include "libDrive/RandomSeekTest.h"
#include "libDrive/SurfaceScanTest.h"
#include "optical/OpticalOptions.h"

namespace host {
namespace {

std::string defaultMaxErrors() {
    return std::to_string(kivrlibdrive::DriveTest::DEFAULT_MAX_ERRORS);
}

// The library's test, telling the host the range it settled on: the frame works it out in
// Initialize, and keeps it where a subclass can read it.
template <typename Test>
class RangeReporting : public Test {
public:
    RangeReporting(kivrlibdrive::Drive& tested, const RangeObserver& observer)
        : Test(tested), observer_(observer) {}

protected:
    quel5::TestResult Initialize() override {
        const quel5::TestResult result = Test::Initialize();
        if (result == quel5::TestResult::PASS && observer_) {
            observer_({this->startSector, this->endSector, this->sectorsToTest, this->numberOfSeeks,
                       this->sectorPercentToTest});
        }
        return result;
    }

private:
    const RangeObserver& observer_;
};

template <typename Test>
quel5::TestResult runTest(kivrlibdrive::Drive& drive, const RangeObserver& observer) {
    RangeReporting<Test> test(drive, observer);
    return test.Run();
}

quel5::TestResult runChecksum(kivrlibdrive::Drive& drive, const RangeObserver&) {
    const auto* medium = dynamic_cast<const MediumDrive*>(&drive);
    if (medium == nullptr) return quel5::TestResult::NOTSUPPORTED;
    kivrlibdrive::CChecksumTest test(drive, medium->checksumParameters());
    return test.Run();
}

std::vector<ParameterDefault> opticalOptionDefaults() {
    std::vector<ParameterDefault> defaults;
    for (const auto& [option, value] : opticalDefaults()) defaults.push_back({option, value});
    return defaults;
}

std::vector<TestDefinition> buildTable() {
    return {
        {"linear-seek",
         "Reads single sectors at equal steps from the start of the range to its end.",
         {{"MaxErrors", defaultMaxErrors()}, {"NumberOfSeeks", "1000"}},
         runTest<kivrlibdrive::CLinearSeekTest>},
        // The library draws the end sector too: ending the default range one below the
        // capacity keeps every draw on the drive. An EndRange the user sets is used as given.
        {"random-seek",
         "Reads single sectors drawn at random from the range, end sector included.",
         {{"MaxErrors", defaultMaxErrors()}, {"NumberOfSeeks", "1000"}, {"EndRange", "MAX-1"}},
         runTest<kivrlibdrive::CRandomSeekTest>},
        {"funnel-seek",
         "Reads pairs of sectors from both ends of the range, moving both ends inward and on "
         "past each other.",
         {{"MaxErrors", defaultMaxErrors()}, {"NumberOfSeeks", "1000"}},
         runTest<kivrlibdrive::CFunnelSeekTest>},
        {"surface-scan",
         "Reads blocks of the drive's preferred size evenly spread over the range, covering "
         "the chosen share of it.",
         {{"MaxErrors", defaultMaxErrors()}, {"SectorPercentToTest", "5"}},
         runTest<kivrlibdrive::CSurfaceScanTest>},
        {"read-compare",
         "Reads sectors at equal steps over the range twice each and compares the two copies.",
         {{"MaxErrors", defaultMaxErrors()}, {"NumberOfSeeks", "1000"}},
         runTest<kivrlibdrive::CLinearReadCompareTest>},
        {"pattern",
         "Writes 18 byte patterns to sectors spread over the range, reads each back and writes "
         "the sector's data back (destructive).",
         {{"MaxErrors", defaultMaxErrors()},
          {"NumberOfSeeks", "1000"},
          {"NumberOfPatterns", "18"},
          {"PreserveData", "true"}},
         runTest<kivrlibdrive::CPatternTest>,
         true},
        {"cache",
         "Writes, reads back and restores 256-sector blocks over the last 32768 sectors of the "
         "range, five times with different fill bytes (destructive).",
         {{"MaxErrors", defaultMaxErrors()}, {"NumberOfSeeks", "1"}, {"PreserveData", "true"}},
         runTest<kivrlibdrive::CCacheTest>,
         true},
        {"checksum",
         "Checks the MD5 digest of a file on a test medium (see --drive-letter and --map).",
         {},
         runChecksum,
         false,
         true},
        {"read-write",
         "Writes sectors of a disc in an optical writer at each speed the disc allows, reads "
         "them back and compares (overwrites the disc; see --media and --device emu:).",
         opticalOptionDefaults(), nullptr, false, false, true},
    };
}

}  // namespace

std::span<const TestDefinition> testTable() {
    static const std::vector<TestDefinition> table = buildTable();
    return table;
}

const TestDefinition* findTest(std::string_view name) {
    for (const TestDefinition& test : testTable()) {
        if (test.name == name) return &test;
    }
    return nullptr;
}

}  // namespace host

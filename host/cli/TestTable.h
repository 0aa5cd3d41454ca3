// The tests drivediag can run: one row per test with its name on the command line, a line of
// description, the parameter values a plain run uses, and how to run it on a drive.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "libDrive/Drive.h"
#include "quel5/TestResult.h"

namespace host {

struct ParameterDefault {
    std::string key;    // a parameter key of the library ("MaxErrors")
    std::string value;  // as --set would give it
};

// The sectors a test settled on once it had read the drive's geometry and the range parameters.
struct TestedRange {
    uint64_t first = 0;          // first sector of the range
    uint64_t end = 0;            // one past the last
    uint64_t sectorsToTest = 0;  // by percentage; 0 when the test counts seeks
    uint64_t seeks = 0;          // positions to visit; 0 when the test covers a percentage
    double percent = 0.0;        // share of the range to cover; 0 when the test counts seeks
};
using RangeObserver = std::function<void(const TestedRange&)>;

struct TestDefinition {
    std::string name;  // "linear-seek"
    std::string description;
    std::vector<ParameterDefault> defaults;
    // Constructs the test on the drive and runs it once, telling `observer` the range each time
    // the test has worked it out (not at all for a test without a range).
    std::function<quel5::TestResult(kivrlibdrive::Drive&, const RangeObserver& observer)> run;
    // Writes to the drive: runs only with --destructive.
    bool destructive = false;
    // Reads files of a test medium (host/ChecksumSetup.h) rather than sectors of --device; run
    // is given a host::MediumDrive.
    bool onMedium = false;
    // Writes and verifies a disc in an optical writer (optical/OpticalRun.h); `run` is unset and
    // `defaults` lists options rather than parameters.
    bool optical = false;
};

// Every test, in the order `drivediag tests` lists them.
std::span<const TestDefinition> testTable();

// The test called `name`, or nullptr.
const TestDefinition* findTest(std::string_view name);

}  // namespace host

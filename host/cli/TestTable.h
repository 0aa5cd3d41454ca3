// The tests drivediag can run: one row per test with its name on the command line, a line of
// description, the parameter values a plain run uses, and how to run it on a drive.
#pragma once

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

struct TestDefinition {
    std::string name;  // "linear-seek"
    std::string description;
    std::vector<ParameterDefault> defaults;
    // Constructs the test on the drive and runs it once.
    std::function<quel5::TestResult(kivrlibdrive::Drive&)> run;
    // Writes to the drive: runs only with --destructive.
    bool destructive = false;
    // Reads files of a test medium (host/ChecksumSetup.h) rather than sectors of --device; run
    // is given a host::MediumDrive.
    bool onMedium = false;
};

// Every test, in the order `drivediag tests` lists them.
std::span<const TestDefinition> testTable();

// The test called `name`, or nullptr.
const TestDefinition* findTest(std::string_view name);

}  // namespace host

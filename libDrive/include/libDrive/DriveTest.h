// kivrlibdrive::DriveTest: the frame every hard-drive test is built on.
//
// It binds a test to a drive, turns the drive's geometry and the range parameters into the
// sectors to test (Initialize), and owns the error rules that turn a pass's error count into its
// result:
//  - "MaxErrors" (UINT32): errors after which a pass may stop early; 0 turns the threshold rules
//    off.
//  - "MinErrorPercentage" (PERCENT, unset counts as 0): the share of failed reads a pass
//    tolerates. Below it a pass with errors still passes, with "TEST_PASSED_WITH_ERRORS".
//
// Events are raised from "libDrive/DriveTest". A test runs on the host's thread, one at a time.
#pragma once

#include <cstdint>

#include "libDrive/Drive.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API DriveTest {
public:
    // Published for hosts and other modules; the frame itself never applies it.
    static constexpr uint32_t DEFAULT_MAX_ERRORS = 10;
    static constexpr uint64_t MINIMUM_JUMP_BY_VALUE = 1;

    // `testedDrive` is not owned and must outlive the test. Reads "MaxErrors" into the error limit.
    explicit DriveTest(Drive& testedDrive);
    DriveTest(const DriveTest& other) = default;
    DriveTest& operator=(const DriveTest&) = delete;
    virtual ~DriveTest();

    // The check every test makes first: NODEVICE (after the warning "INVALID_DRIVE_HANDLE")
    // when the drive has no usable handle, else PASS.
    virtual quel5::TestResult Run();

    // The "MaxErrors" value as the framework gives it (no default applied).
    uint32_t GetMaxErrors() const;
    // The "MinErrorPercentage" value, 0 to 100; 0.0 when it was not set.
    double GetMinErrorPercentage() const;
    // False while "MaxErrors" is 0; otherwise true when errors / sectors * 100 lies strictly
    // above the minimum error percentage.
    bool IsErrorThresholdReached(const double& errors, const double& sectors) const;
    // A pass with errors that stay under the threshold passes: for a PASS or FAIL `result` it
    // raises "TEST_PASSED_WITH_ERRORS" and returns PASS. Every other case returns `result`
    // unchanged.
    quel5::TestResult GetThresholdResult(const quel5::TestResult& result, const double& errors,
                                         const double& sectors);
    // Says why a pass stopped early: "TEST_FAILED_THRESHOLD" when a minimum percentage is set
    // and reached, else "MAX_ERRORS_EXCEEDED" (variable "MaxError") once errors reach
    // "MaxErrors".
    void DisplayExitErrorEvent(const double& errors, const double& sectors);
    // Raises "TEST_PASSED_WITH_ERRORS" with "percent" (errors / sectors, single precision) and
    // "threshold_percent", both as "%.2f" texts.
    void ShowPassedWarning(const double& errors, const double& sectors);
    // Raises "TEST_FAILED_THRESHOLD" with "threshold_percent" when a minimum percentage is set.
    void ShowThresholdFailed();

protected:
    // Reads the geometry and evaluates the range parameters into startSector, endSector,
    // jumpCount (at least 1), sectorsToTest, numberOfSeeks and sectorPercentToTest, and clears
    // the error limit. Returns PASS, or:
    //  - INTERNALERROR: the geometry could not be read ("UNABLE_TO_GET_DRIVE_GEOMETRY"), or a
    //    range text could not be evaluated;
    //  - WARN: the drive has no sectors ("TOTAL_SECTOR_GREATER_THAN_ZERO");
    //  - BADPARAMS: the range is unusable ("END_RANGE_GREATER_THAN_START_RANGE", or
    //    "InvalidRangeEntry" from the range, or "TOTAL_SECTORS_GREATER_THAN_DIFFERENCE").
    // Exceptions other than the library's range errors propagate.
    virtual quel5::TestResult Initialize();

    Drive& drive;
    uint64_t startSector;  // inclusive
    uint64_t endSector;    // exclusive
    uint32_t bytesPerSector;
    double sectorPercentToTest;
    uint64_t sectorsToTest;
    uint64_t totalSectors;
    uint64_t numberOfSeeks;
    uint64_t jumpCount;
    uint32_t errorLimit;
    bool rangeFlagA;  // the range's seeks flag
    bool rangeFlagB;  // the range's percent flag
};

}  // namespace kivrlibdrive

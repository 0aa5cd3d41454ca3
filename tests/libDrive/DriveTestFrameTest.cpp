// DriveTest: the handle check, Initialize and the error-threshold rules.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DriveTestSupport.h"
#include "libDrive/DriveTest.h"

namespace {

using quel5::TestResult;

// Opens the protected parts of the frame to the tests.
class FrameProbe : public kivrlibdrive::DriveTest {
public:
    using DriveTest::DriveTest;
    using DriveTest::Initialize;
    // Start, end, jump, seeks, sectors to test, capacity, bytes per sector, error limit.
    std::vector<uint64_t> state() const {
        return {startSector,   endSector,    jumpCount,      numberOfSeeks,
                sectorsToTest, totalSectors, bytesPerSector, errorLimit};
    }
};

class DriveTestFrame : public drivetests::DriveTestFixture {
protected:
    quel5::DiagDevice device{L"sim:frame"};
};

TEST_F(DriveTestFrame, RunRefusesADriveWithoutAHandle) {
    sim::SimulatedDrive drive(device, drivetests::driveOf(100));
    drive.switches().invalidHandle = true;
    FrameProbe test(drive);
    EXPECT_EQ(test.Run(), TestResult::NODEVICE);
    EXPECT_EQ(host.eventSummaries(),
              std::vector<std::string>{"WARNING INVALID_DRIVE_HANDLE@libDrive/DriveTest"});
}

struct InitializeCase {
    const char* name;
    uint64_t total;
    uint32_t bytesPerSector;
    bool geometryThrows;
    drivetests::Parameters parameters;
    TestResult result;
    std::vector<std::string> events;
    std::vector<std::string> warningsLogged;  // priority 4 lines of "libDrive.DriveTest"
};

TEST_F(DriveTestFrame, InitializeRefusesWhatCannotBeTested) {
    // clang-format off
    const InitializeCase cases[] = {
        {"no sectors", 0, 512, false, {{"NumberOfSeeks", "10"}}, TestResult::WARN, {"WARNING TOTAL_SECTOR_GREATER_THAN_ZERO@libDrive/DriveTest"}, {}},
        {"geometry unreadable", 100, 512, true, {{"NumberOfSeeks", "10"}}, TestResult::INTERNALERROR, {"WARNING UNABLE_TO_GET_DRIVE_GEOMETRY@libDrive/DriveTest"}, {}},
        {"no amount to test",
         100, 512, false, {},
         TestResult::BADPARAMS,
         {"ERROR InvalidSectorPercentToTestValue@libDrive/Range", "ERROR InvalidNumberOfSeeksValue@libDrive/Range",
          "WARNING END_RANGE_GREATER_THAN_START_RANGE@libDrive/DriveTest"},
         {"110  Invalid Range: NumberOfSeeks or SectorPercentToTest parameter is not set",
          "111 Error creating the Range Object"}},
        {"end below start",
         100, 512, false, {{"NumberOfSeeks", "10"}, {"StartRange", "50"}, {"EndRange", "40"}},
         TestResult::BADPARAMS,
         {"WARNING END_RANGE_GREATER_THAN_START_RANGE@libDrive/DriveTest"},
         {"110  Invalid Range: The end range must be greater than start range",
          "111 Error creating the Range Object"}},
        {"malformed start", 100, 512, false, {{"NumberOfSeeks", "10"}, {"StartRange", "MAX"}}, TestResult::BADPARAMS, {"WARNING InvalidRangeEntry@libDrive/Range{PARAMETER_NAME=StartRange}"}, {"120 "}},
        {"unevaluable large-drive text",
         100, 512, false,
         {{"NumberOfSeeks", "10"}, {"AdjustForLargeDrives", "true"}, {"LargeDriveSize", "0"}, {"LargeDriveEndRange", "half"}},
         TestResult::INTERNALERROR, {}, {}},
        {"sector size 0 with a size text", 100, 0, false, {{"NumberOfSeeks", "10"}, {"StartRange", "1KB"}}, TestResult::INTERNALERROR, {}, {}},
    };
    // clang-format on
    for (const InitializeCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(c.parameters);
        sim::SimulatedDrive drive(device, drivetests::driveOf(c.total, c.bytesPerSector));
        drive.switches().geometryThrows = c.geometryThrows;
        FrameProbe test(drive);
        EXPECT_EQ(test.Initialize(), c.result);
        EXPECT_EQ(host.eventSummaries(), c.events);
        EXPECT_EQ(logged("libDrive.DriveTest", 4), c.warningsLogged);
    }
}

TEST_F(DriveTestFrame, MoreSectorsThanTheSpanIsRefused) {
    set("StartRange", "0");
    set("EndRange", "100");
    sim::SimulatedDrive drive(device, drivetests::driveOf(1000));
    // A host may store any percentage; one above 100 asks for more sectors than the span has.
    quel5::Registry::instance()
        .findParameter(L"SectorPercentToTest")
        ->setValue(quel5::Value::percent(150.0));
    FrameProbe test(drive);
    EXPECT_EQ(test.Initialize(), TestResult::BADPARAMS);
    EXPECT_EQ(host.eventKeys(), std::vector<std::string>{"TOTAL_SECTORS_GREATER_THAN_DIFFERENCE"});
}

struct AcceptedCase {
    const char* name;
    uint64_t total;
    uint32_t bytesPerSector;
    drivetests::Parameters parameters;
    uint64_t start, end, jump, seeks, toTest;
};

TEST_F(DriveTestFrame, InitializeTakesTheRangeAndClearsTheErrorLimit) {
    // clang-format off
    const AcceptedCase cases[] = {
        {"seeks", 100000, 512, {{"NumberOfSeeks", "10"}, {"StartRange", "100"}, {"EndRange", "1100"}}, 100, 1100, 100, 10, 0},
        {"percent", 100000, 4096, {{"SectorPercentToTest", "10"}, {"StartRange", "1000"}, {"EndRange", "2000"}}, 1000, 2000, 10, 0, 100},
    };
    // clang-format on
    for (const AcceptedCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll(c.parameters);
        set("MaxErrors", "7");
        sim::SimulatedDrive drive(device, drivetests::driveOf(c.total, c.bytesPerSector));
        FrameProbe test(drive);
        EXPECT_EQ(test.state().back(), 7u) << "the error limit as constructed";
        EXPECT_EQ(test.Initialize(), TestResult::PASS);
        EXPECT_EQ(test.state(), (std::vector<uint64_t>{c.start, c.end, c.jump, c.seeks, c.toTest,
                                                       c.total, c.bytesPerSector, 0}));
        EXPECT_TRUE(host.events().empty());
    }
}

// "MaxErrors" and "MinErrorPercentage" as texts; null leaves the parameter unset.
struct Limits {
    const char* maxErrors;
    const char* minPercent;
};

void applyLimits(const Limits& limits) {
    if (limits.maxErrors) drivetests::setParameter("MaxErrors", limits.maxErrors);
    if (limits.minPercent) drivetests::setParameter("MinErrorPercentage", limits.minPercent);
}

struct ThresholdCase {
    Limits limits;
    double errors;
    double sectors;
    TestResult given;
    TestResult expected;
    const char* percent;  // "percent" of TEST_PASSED_WITH_ERRORS; null: no event
    const char* threshold;
};

TEST_F(DriveTestFrame, ErrorsUnderTheThresholdPassWithAWarning) {
    // clang-format off
    const ThresholdCase cases[] = {
        {{"10", "5"}, 3, 100, TestResult::FAIL, TestResult::PASS, "3.00", "5.00"},
        {{"10", "5"}, 5, 100, TestResult::FAIL, TestResult::PASS, "5.00", "5.00"},
        {{"10", "5"}, 6, 100, TestResult::FAIL, TestResult::FAIL, nullptr, nullptr},
        {{"10", "5"}, 6, 100, TestResult::PASS, TestResult::PASS, nullptr, nullptr},
        {{"10", "5"}, 3, 100, TestResult::PASS, TestResult::PASS, "3.00", "5.00"},
        {{"10", "5"}, 0, 100, TestResult::PASS, TestResult::PASS, nullptr, nullptr},
        {{"10", "5"}, 0, 100, TestResult::FAIL, TestResult::FAIL, nullptr, nullptr},
        {{"10", "5"}, 3, 100, TestResult::USERABORTED, TestResult::USERABORTED, nullptr, nullptr},
        {{"0", "5"}, 50, 100, TestResult::FAIL, TestResult::PASS, "50.00", "5.00"},
        {{"0", nullptr}, 50, 100, TestResult::FAIL, TestResult::PASS, "50.00", "0.00"},
        {{"10", nullptr}, 1, 100, TestResult::FAIL, TestResult::FAIL, nullptr, nullptr},
        {{"10", "12.5"}, 1, 8, TestResult::FAIL, TestResult::PASS, "12.50", "12.50"},
        // The share is worked out in single precision: 1/160 shows as 0.63, not 0.62.
        {{"10", "5"}, 1, 160, TestResult::FAIL, TestResult::PASS, "0.63", "5.00"},
        {{"10", "50"}, 1, 3, TestResult::FAIL, TestResult::PASS, "33.33", "50.00"},
    };
    // clang-format on
    for (const ThresholdCase& c : cases) {
        SCOPED_TRACE(testing::Message()
                     << (c.limits.maxErrors ? c.limits.maxErrors : "-") << "/"
                     << (c.limits.minPercent ? c.limits.minPercent : "-") << " " << c.errors
                     << " of " << c.sectors << " " << c.given.name());
        setAll();
        applyLimits(c.limits);
        sim::SimulatedDrive drive(device, drivetests::driveOf(100));
        FrameProbe test(drive);
        EXPECT_EQ(test.GetThresholdResult(c.given, c.errors, c.sectors), c.expected);
        std::vector<std::string> expected;
        if (c.percent != nullptr) {
            expected.push_back(
                std::string("WARNING TEST_PASSED_WITH_ERRORS@libDrive/DriveTest{percent=") +
                c.percent + ",threshold_percent=" + c.threshold + "}");
        }
        EXPECT_EQ(host.eventSummaries(), expected);
    }
}

struct ExitCase {
    Limits limits;
    double errors;
    double sectors;
    const char* event;  // null: none
    const char* value;  // of its one variable: "MaxError" or "threshold_percent"
};

TEST_F(DriveTestFrame, EarlyExitSaysWhy) {
    // clang-format off
    const ExitCase cases[] = {
        {{"10", "5"}, 10, 100, "TEST_FAILED_THRESHOLD", "5.00"},
        {{"10", "50"}, 10, 100, "MAX_ERRORS_EXCEEDED", "10"},
        {{"10", nullptr}, 10, 100, "MAX_ERRORS_EXCEEDED", "10"},
        {{"10", nullptr}, 11, 100, "MAX_ERRORS_EXCEEDED", "10"},
        {{"10", "50"}, 9, 100, nullptr, nullptr},
        {{"3", "5"}, 5, 100, "MAX_ERRORS_EXCEEDED", "3"},
    };
    // clang-format on
    for (const ExitCase& c : cases) {
        SCOPED_TRACE(testing::Message() << c.limits.maxErrors << "/"
                                        << (c.limits.minPercent ? c.limits.minPercent : "-") << " "
                                        << c.errors << " of " << c.sectors);
        setAll();
        applyLimits(c.limits);
        sim::SimulatedDrive drive(device, drivetests::driveOf(100));
        FrameProbe test(drive);
        test.DisplayExitErrorEvent(c.errors, c.sectors);
        std::vector<std::string> expected;
        if (c.event != nullptr) {
            const bool limit = std::string(c.event) == "MAX_ERRORS_EXCEEDED";
            expected.push_back(std::string(limit ? "ERROR " : "WARNING ") + c.event +
                               "@libDrive/DriveTest{" +
                               (limit ? "MaxError=" : "threshold_percent=") + c.value + "}");
        }
        EXPECT_EQ(host.eventSummaries(), expected);
    }
}

}  // namespace

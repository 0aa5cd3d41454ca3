#include "libDrive/DriveTest.h"

#include <cstdio>
#include <memory>

#include "ClassLog.h"
#include "InternalParameters.h"
#include "kiv/Exception.h"
#include "kiv/Log.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Range.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/DriveTest";

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.DriveTest");
}

void log(kiv::LogPriority priority, const kiv::String& text) {
    logger()->log(static_cast<int>(priority), text);
}

// A percentage as the threshold events show it: two decimals, in a text of at most 18
// characters.
quel5::Value percentText(double percent) {
    char text[19];
    std::snprintf(text, sizeof text, "%.2f", percent);
    return quel5::Value(text);
}

}  // namespace

DriveTest::DriveTest(Drive& testedDrive)
    : drive(testedDrive),
      startSector(0),
      endSector(0),
      bytesPerSector(0),
      sectorPercentToTest(0.0),
      sectorsToTest(0),
      totalSectors(0),
      numberOfSeeks(0),
      jumpCount(0),
      errorLimit(g_MaxErrors->value().valueUint32()),
      rangeFlagA(true),
      rangeFlagB(true) {
    const ScopedTrace trace(logger(), L"DriveTest::DriveTest", kSource, __LINE__);
}

DriveTest::~DriveTest() = default;

quel5::TestResult DriveTest::Run() {
    if (drive.GetHandle() == invalidDriveHandle()) {
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventInvalidDriveHandle, kSource,
                                   __LINE__);
        return quel5::TestResult::NODEVICE;
    }
    return quel5::TestResult::PASS;
}

quel5::TestResult DriveTest::Initialize() {
    const ScopedTrace trace(logger(), L"Initialize", kSource, __LINE__);
    try {
        totalSectors = drive.GetTotalSectors();
        bytesPerSector = drive.GetBytesPerSector();
    } catch (...) {
        // Whatever the drive threw, the test can only say the geometry is unknown.
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventUnableToGetDriveGeometry, kSource,
                                   __LINE__);
        return quel5::TestResult::INTERNALERROR;
    }
    if (totalSectors == 0) {
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                                   __LINE__);
        return quel5::TestResult::WARN;
    }

    std::unique_ptr<CRange> range;
    try {
        range = std::make_unique<CRange>(totalSectors, bytesPerSector, rangeFlagB, rangeFlagA);
    } catch (const InvalidRange& failure) {
        log(kiv::LogPriority::Warning, kiv::String(L"110 ") + failure.getMessage());
        log(kiv::LogPriority::Warning, L"111 Error creating the Range Object");
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventEndRangeGreaterThanStartRange,
                                   kSource, __LINE__);
        return quel5::TestResult::BADPARAMS;
    } catch (const CannotRun& failure) {
        // The range has already told the person which text is wrong.
        log(kiv::LogPriority::Warning, kiv::String(L"120 ") + failure.getMessage());
        return quel5::TestResult::BADPARAMS;
    } catch (const kiv::InternalError&) {
        return quel5::TestResult::INTERNALERROR;
    }

    startSector = range->GetStartRange();
    endSector = range->GetEndRange();
    if (startSector >= endSector) {
        log(kiv::LogPriority::Warning, L"141 Start Range Greater than start range");
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventEndRangeGreaterThanStartRange,
                                   kSource, __LINE__);
        return quel5::TestResult::BADPARAMS;
    }
    sectorPercentToTest = range->GetSectorPercentToTest();
    sectorsToTest = range->GetSectorTotalToTest();
    if (endSector - 1 > totalSectors) {
        log(kiv::LogPriority::Detail,
            L"154 Some sectors to test are outside the drive capacity. Make the end range equal "
            L"to drive capacity");
        endSector = totalSectors;
    }
    if (sectorsToTest > endSector - startSector) {
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventTotalSectorsGreaterThanDifference,
                                   kSource, __LINE__);
        return quel5::TestResult::BADPARAMS;
    }
    jumpCount = range->GetJumpCount();
    if (jumpCount == 0) {
        jumpCount = MINIMUM_JUMP_BY_VALUE;
    }
    numberOfSeeks = range->GetNumberOfSeeks();
    errorLimit = 0;
    return quel5::TestResult::PASS;
}

uint32_t DriveTest::GetMaxErrors() const { return g_MaxErrors->value().valueUint32(); }

double DriveTest::GetMinErrorPercentage() const {
    if (g_MinErrorPercentage->valueSource() == quel5::ParameterSource::NOTSET()) {
        return 0.0;
    }
    return g_MinErrorPercentage->value().valuePercent();
}

bool DriveTest::IsErrorThresholdReached(const double& errors, const double& sectors) const {
    if (GetMaxErrors() == 0) {
        return false;
    }
    return errors / sectors * 100.0 > GetMinErrorPercentage();
}

quel5::TestResult DriveTest::GetThresholdResult(const quel5::TestResult& result,
                                                const double& errors, const double& sectors) {
    const bool judged = result == quel5::TestResult::PASS || result == quel5::TestResult::FAIL;
    if (errors > 0 && !IsErrorThresholdReached(errors, sectors) && judged) {
        ShowPassedWarning(errors, sectors);
        return quel5::TestResult::PASS;
    }
    return result;
}

void DriveTest::DisplayExitErrorEvent(const double& errors, const double& sectors) {
    if (GetMinErrorPercentage() > 0 && IsErrorThresholdReached(errors, sectors)) {
        ShowThresholdFailed();
        return;
    }
    const uint32_t maxErrors = GetMaxErrors();
    if (errors >= static_cast<double>(maxErrors)) {
        LibDriveStrings::g_errorEventMaxErrorsExceeded->setVariable(L"MaxError",
                                                                    quel5::Value(maxErrors));
        quel5::DiagModule::error(LibDriveStrings::g_errorEventMaxErrorsExceeded, kSource, __LINE__);
    }
}

void DriveTest::ShowPassedWarning(const double& errors, const double& sectors) {
    // Single precision is enough for a figure shown with two decimals.
    const float share = static_cast<float>(errors) / static_cast<float>(sectors);
    const double percent = static_cast<double>(share) * 100.0;
    LibDriveStrings::g_WarnEventPassedWithErrors->setVariable(L"percent", percentText(percent));
    LibDriveStrings::g_WarnEventPassedWithErrors->setVariable(L"threshold_percent",
                                                              percentText(GetMinErrorPercentage()));
    quel5::DiagModule::warning(LibDriveStrings::g_WarnEventPassedWithErrors, kSource, __LINE__);
}

void DriveTest::ShowThresholdFailed() {
    const double minimum = GetMinErrorPercentage();
    if (minimum > 0) {
        LibDriveStrings::g_WarnEventFailedThreshold->setVariable(L"threshold_percent",
                                                                 percentText(minimum));
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventFailedThreshold, kSource, __LINE__);
    }
}

}  // namespace kivrlibdrive

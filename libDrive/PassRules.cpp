#include "libDrive/PassRules.h"

#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {

bool MaxErrorsReached(const DriveTest& test, double errors, double plannedSteps) {
    const uint32_t maxErrors = test.GetMaxErrors();
    return maxErrors != 0 && errors / plannedSteps * 100.0 > test.GetMinErrorPercentage() &&
           errors >= maxErrors;
}

quel5::TestResult PassResult(DriveTest& test, const quel5::TestResult& running, double errors,
                             double plannedSteps) {
    if (!(test.GetMinErrorPercentage() > 0.0)) {
        return errors != 0 ? quel5::TestResult::FAIL : running;
    }
    return test.GetThresholdResult(running, errors, plannedSteps);
}

TrayHold::TrayHold(Drive& drive) : drive_(drive), held_(true) { drive_.LockTray(); }

TrayHold::~TrayHold() { Release(); }

void TrayHold::Release() {
    if (held_) {
        held_ = false;
        drive_.UnlockTray();
    }
}

quel5::TestResult RunOfferingRerun(Drive& drive, const std::function<quel5::TestResult()>& pass,
                                   const wchar_t* source, int rerunEventLine) {
    quel5::TestResult result = pass();
    if (result == quel5::TestResult::FAIL && drive.IsRerunAllowed() && drive.ConfirmRerun()) {
        quel5::DiagModule::resetPercentDone();
        quel5::DiagModule::informative(LibDriveStrings::g_EventRerunTest, source, rerunEventLine);
        result = pass();
    }
    if (result == quel5::TestResult::PASS) {
        result = drive.GetPASSResult();
    }
    return result;
}

}  // namespace kivrlibdrive

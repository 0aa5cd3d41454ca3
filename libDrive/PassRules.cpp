#include "PassRules.h"

#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

quel5::TestResult passResult(DriveTest& test, const quel5::TestResult& running, double errors,
                             double plannedSteps) {
    if (!(test.GetMinErrorPercentage() > 0.0)) {
        return errors != 0 ? quel5::TestResult::FAIL : running;
    }
    return test.GetThresholdResult(running, errors, plannedSteps);
}

}  // namespace

bool MaxErrorsReached(const DriveTest& test, double errors, double plannedSteps) {
    const uint32_t maxErrors = test.GetMaxErrors();
    return maxErrors != 0 && errors / plannedSteps * 100.0 > test.GetMinErrorPercentage() &&
           errors >= maxErrors;
}

ReadOutcome CountRead(DriveTest& test, const quel5::TestResult& result, uint32_t& errors,
                      double plannedSteps) {
    if (result == quel5::TestResult::PASS) {
        return ReadOutcome::Good;
    }
    if (result == quel5::TestResult::INTERNALERROR) {
        return ReadOutcome::EndsWithFailure;
    }
    ++errors;
    if (MaxErrorsReached(test, errors, plannedSteps)) {
        test.DisplayExitErrorEvent(errors, plannedSteps);
        return ReadOutcome::TooManyErrors;
    }
    return ReadOutcome::Counted;
}

quel5::TestResult OpenPass(Drive& drive, TrayHold& tray,
                           const std::function<quel5::TestResult()>& initialize) {
    if (drive.NeedsMediaCheck()) {
        const quel5::TestResult media = drive.CheckMedia(false);
        if (media != quel5::TestResult::PASS) {
            tray.Release();
            return media;
        }
    }
    const quel5::TestResult initialized = initialize();
    if (initialized != quel5::TestResult::PASS) {
        tray.Release();
    }
    return initialized;
}

quel5::TestResult AbandonPass(TrayHold& tray, quel5::Event* event, const wchar_t* source, int line,
                              quel5::TestResult result) {
    tray.Release();
    quel5::DiagModule::warning(event, source, line);
    return result;
}

quel5::TestResult ClosePass(DriveTest& test, TrayHold& tray, const quel5::TestResult& running,
                            double errors, double plannedSteps) {
    quel5::DiagModule::percentDone(100);
    tray.Release();
    return passResult(test, running, errors, plannedSteps);
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
                                   const wchar_t* source, int rerunEventLine,
                                   UnqualifiedMediaPrompt prompt) {
    quel5::TestResult result = pass();
    if (result == quel5::TestResult::FAIL && drive.IsRerunAllowed() && drive.ConfirmRerun()) {
        quel5::DiagModule::resetPercentDone();
        quel5::DiagModule::informative(LibDriveStrings::g_EventRerunTest, source, rerunEventLine);
        result = pass();
    }
    if (prompt == UnqualifiedMediaPrompt::AfterFailure && result == quel5::TestResult::FAIL &&
        drive.CheckForQualifiedMedia()) {
        drive.PromptUserOnUnqualifiedMedia();
    }
    if (result == quel5::TestResult::PASS) {
        result = drive.GetPASSResult();
    }
    return result;
}

quel5::TestResult RunCheckedPasses(DriveTest& test, Drive& drive,
                                   const std::function<quel5::TestResult()>& pass,
                                   const wchar_t* source, int rerunEventLine,
                                   UnqualifiedMediaPrompt prompt) {
    const quel5::TestResult checked = test.DriveTest::Run();
    if (checked != quel5::TestResult::PASS) {
        return checked;
    }
    return RunOfferingRerun(drive, pass, source, rerunEventLine, prompt);
}

}  // namespace kivrlibdrive

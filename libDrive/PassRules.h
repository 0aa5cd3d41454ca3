// The error rules a hard-drive test applies during and at the end of a pass, on top of the
// threshold services of DriveTest. Internal to the library.
#pragma once

#include <functional>

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

// True when a pass must stop after a failed read: "MaxErrors" is not 0, errors / plannedSteps *
// 100 lies strictly above the minimum error percentage, and the errors reached "MaxErrors".
bool MaxErrorsReached(const DriveTest& test, double errors, double plannedSteps);

// The result of a finished pass whose working result is `running`. With no minimum error
// percentage any error makes it FAIL; otherwise the threshold rule of
// DriveTest::GetThresholdResult decides (and may raise its event).
quel5::TestResult PassResult(DriveTest& test, const quel5::TestResult& running, double errors,
                             double plannedSteps);

// Keeps the drive's tray locked for one pass: LockTray() at construction and UnlockTray()
// exactly once, at Release() or, when the pass is left by an exception, at destruction.
class TrayHold {
public:
    explicit TrayHold(Drive& drive);
    ~TrayHold();
    TrayHold(const TrayHold&) = delete;
    TrayHold& operator=(const TrayHold&) = delete;

    void Release();

private:
    Drive& drive_;
    bool held_;
};

// What a test's Run does once the drive's handle has been checked: one pass; after a FAIL, when
// the drive allows a re-run and the person confirms it, the percentage is reset, "RERUN_TEST" is
// raised as informative from `source`, line `rerunEventLine`, and the result is that of one
// more pass; a PASS is finally replaced by the drive's GetPASSResult().
quel5::TestResult RunOfferingRerun(Drive& drive, const std::function<quel5::TestResult()>& pass,
                                   const wchar_t* source, int rerunEventLine);

}  // namespace kivrlibdrive

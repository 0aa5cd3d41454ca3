// The error rules a hard-drive test applies during and at the end of a pass, on top of the
// threshold services of DriveTest. Internal to the library.
#pragma once

#include <cstdint>
#include <functional>

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "quel5/Event.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

// True when a pass must stop after a failed read: "MaxErrors" is not 0, errors / plannedSteps *
// 100 lies strictly above the minimum error percentage, and the errors reached "MaxErrors".
bool MaxErrorsReached(const DriveTest& test, double errors, double plannedSteps);

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

// Whether a test that still fails after the re-run offer tells the drive, so that it may ask for
// qualified media (the destructive tests do).
enum class UnqualifiedMediaPrompt { Never, AfterFailure };

// How a pass takes the result of one read.
enum class ReadOutcome {
    Good,             // the read passed
    Counted,          // one more error; the pass goes on
    TooManyErrors,    // one more error, and the pass must stop: the exit event was raised
    EndsWithFailure,  // INTERNALERROR: the pass ends at once with that result, nothing counted
};

// Judges `result` for a pass that planned `plannedSteps` steps: any result other than PASS and
// INTERNALERROR adds one to `errors`, and when MaxErrorsReached() then holds it raises
// DisplayExitErrorEvent(errors, plannedSteps) and answers TooManyErrors.
ReadOutcome CountRead(DriveTest& test, const quel5::TestResult& result, uint32_t& errors,
                      double plannedSteps);

// The start every pass shares, with `tray` just taken: the drive's media check when it asks for
// one (CheckMedia(false)), then `initialize`. PASS, or the first other result after releasing
// the tray.
quel5::TestResult OpenPass(Drive& drive, TrayHold& tray,
                           const std::function<quel5::TestResult()>& initialize);

// Leaves a pass before it read anything: releases the tray, raises `event` as a warning from
// `source`, line `line`, and returns `result`.
quel5::TestResult AbandonPass(TrayHold& tray, quel5::Event* event, const wchar_t* source, int line,
                              quel5::TestResult result);

// Ends a pass that read to its end, stopped early or was stopped, with working result `running`:
// percentDone(100), the tray released, then the pass's result. With no minimum error percentage
// any error makes it FAIL; otherwise the threshold rule of DriveTest::GetThresholdResult decides
// (and may raise its event).
quel5::TestResult ClosePass(DriveTest& test, TrayHold& tray, const quel5::TestResult& running,
                            double errors, double plannedSteps);

// What a test's Run does once the drive's handle has been checked: one pass; after a FAIL, when
// the drive allows a re-run and the person confirms it, the percentage is reset, "RERUN_TEST" is
// raised as informative from `source`, line `rerunEventLine`, and the result is that of one
// more pass. With UnqualifiedMediaPrompt::AfterFailure a result still FAIL then calls the
// drive's PromptUserOnUnqualifiedMedia() (its answer ignored) when CheckForQualifiedMedia() is
// true. A PASS is finally replaced by the drive's GetPASSResult().
quel5::TestResult RunOfferingRerun(Drive& drive, const std::function<quel5::TestResult()>& pass,
                                   const wchar_t* source, int rerunEventLine,
                                   UnqualifiedMediaPrompt prompt = UnqualifiedMediaPrompt::Never);

// A test's whole Run: NODEVICE (from DriveTest::Run) for a drive without a handle, otherwise
// RunOfferingRerun() (without the media prompt unless `prompt` asks for it).
quel5::TestResult RunCheckedPasses(DriveTest& test, Drive& drive,
                                   const std::function<quel5::TestResult()>& pass,
                                   const wchar_t* source, int rerunEventLine,
                                   UnqualifiedMediaPrompt prompt = UnqualifiedMediaPrompt::Never);

}  // namespace kivrlibdrive

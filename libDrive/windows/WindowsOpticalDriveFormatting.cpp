// Blanking and formatting: the one long command runs on a worker thread while the test thread
// waits in slices and reports how far the expected time has gone.
#include <algorithm>
#include <cstring>

#include "OpticalDriveLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "os/Clock.h"
#include "os/Thread.h"
#include "quel5/DiagModule.h"
#include "scsi/RecordingCommands.h"
#include "scsi/UnitCommands.h"

namespace kivrlibdrive {
namespace {

constexpr uint32_t kFormatWaitMs = 1000;
constexpr uint32_t kBlankWaitMs = 4000;
constexpr uint32_t kFormatPollMs = 1000;
constexpr int kFormatPolls = 181;
constexpr uint32_t kFormatInProgress = 0x0404;
constexpr uint32_t kCommandSequenceError = 0x2C00;
constexpr uint8_t kMinimalBlank = 1;

using ThreadBody = unsigned long (*)(void*);

// Runs `body` on `parms` and reports percent done every `sliceMs` until it ends, then judges the
// status it left.
void runWithProgress(ThreadBody body, tag_CBlankingThreadParms* parms, uint32_t sliceMs,
                     unsigned int expectedSeconds, unsigned int startPercent,
                     unsigned int endPercent) {
    os::Thread worker([body, parms] { body(parms); });
    const uint32_t start = os::tickCount();
    while (!os::waitFor(worker, sliceMs)) {
        const unsigned int elapsedSeconds = optical::millisecondsSince(start) / 1000;
        // Multiplied before dividing, so short waits still move the bar in whole percents.
        quel5::DiagModule::percentDone(std::min(elapsedSeconds, expectedSeconds) *
                                           (endPercent - startPercent) / expectedSeconds +
                                       startPercent);
    }
    worker.join();
    if (parms->status == kCommandSequenceError) {
        return;
    }
    if (parms->status != 0) {
        throw TestFailedException(parms->status);
    }
    quel5::DiagModule::percentDone(endPercent);
}

}  // namespace

unsigned long WindowsOpticalDrive::formatThread(void* argument) {
    auto* parms = static_cast<tag_CBlankingThreadParms*>(argument);
    unsigned char list[sizeof(parms->formatList)];
    std::memcpy(list, parms->formatList, sizeof(list));
    list[0] = 0;
    list[1] = 0;
    uint32_t status =
        kivscsi::FormatDvdUnit(parms->scsiPath, parms->deviceName, list, sizeof(list));
    parms->status = status;
    if (status != 0) {
        return 0;
    }
    // The command may return before the format ends; the unit says so until it is done.
    for (int poll = 0; poll < kFormatPolls; ++poll) {
        os::sleepMilliseconds(kFormatPollMs);
        status = kivscsi::TestUnitReady(parms->scsiPath, parms->deviceName);
        parms->status = status;
        if (status != kFormatInProgress) {
            break;
        }
    }
    return 0;
}

unsigned long WindowsOpticalDrive::blankingThread(void* argument) {
    ScopedTrace trace(optical::logger(), L"blankingThread", optical::kSource, __LINE__);
    auto* parms = static_cast<tag_CBlankingThreadParms*>(argument);
    parms->status = kivscsi::Blank(parms->scsiPath, parms->deviceName, kMinimalBlank);
    return 0;
}

void WindowsOpticalDrive::formatDiscImp(tag_CBlankingThreadParms* parms,
                                        unsigned int expectedSeconds, unsigned int startPercent,
                                        unsigned int endPercent) {
    runWithProgress(&WindowsOpticalDrive::formatThread, parms, kFormatWaitMs, expectedSeconds,
                    startPercent, endPercent);
}

void WindowsOpticalDrive::blankDiscImp(tag_CBlankingThreadParms* parms,
                                       unsigned int expectedSeconds, unsigned int startPercent,
                                       unsigned int endPercent) {
    runWithProgress(&WindowsOpticalDrive::blankingThread, parms, kBlankWaitMs, expectedSeconds,
                    startPercent, endPercent);
}

}  // namespace kivrlibdrive

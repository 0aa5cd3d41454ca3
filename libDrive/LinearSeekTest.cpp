#include "libDrive/LinearSeekTest.h"

#include <cstdint>

#include "ClassLog.h"
#include "PassReporting.h"
#include "PassRules.h"
#include "PassTiming.h"
#include "SectorBuffer.h"
#include "kiv/Log.h"
#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/LinearSeekTest";

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.LinearSeekTest");
}

}  // namespace

CLinearSeekTest::CLinearSeekTest(Drive& testedDrive) : DriveTest(testedDrive) {}

quel5::TestResult CLinearSeekTest::Run() {
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    return RunCheckedPasses(
        *this, drive, [this] { return DoTesting(); }, kSource, __LINE__);
}

quel5::TestResult CLinearSeekTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CLinearSeekTest::DoTesting", kSource, __LINE__);
    TrayHold tray(drive);
    quel5::TestResult result = OpenPass(drive, tray, [this] { return Initialize(); });
    if (result != quel5::TestResult::PASS) {
        return result;
    }
    if (startSector == endSector) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                           __LINE__, quel5::TestResult::BADPARAMS);
    }
    // Source lines the host sees with the sector-size and buffer warnings.
    constexpr ReadBufferLines kBufferLines{47, 53};
    ReadBuffer buffer;
    result = TakeReadBuffer(drive, tray, 1, kSource, kBufferLines, buffer);
    if (result != quel5::TestResult::PASS) {
        return result;
    }

    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    const uint64_t span = endSector - startSector;
    const uint64_t plannedReads = span / jumpCount;
    uint32_t errors = 0;
    uint64_t current = startSector;
    while (current < endSector) {
        drive.PrepareRead();
        result = drive.ReadSectors(current, 1, buffer.data.get(), buffer.sectorBytes);
        const ReadOutcome outcome =
            CountRead(*this, result, errors, static_cast<double>(plannedReads));
        if (outcome == ReadOutcome::EndsWithFailure) {
            tray.Release();
            return quel5::TestResult::INTERNALERROR;
        }
        if (outcome == ReadOutcome::TooManyErrors) {
            break;
        }
        // Reporting, and so the stop poll, happens at most about once a second.
        if (timing.IsReportDue()) {
            quel5::DiagModule::percentDone(
                static_cast<unsigned int>((current - startSector) * 100 / span));
            quel5::DiagModule::progress(ReadSectorText(current, endSector));
            ReportTimeLeft(drive, logger(), 231, timing, (endSector - current) / jumpCount);
            if (quel5::DiagModule::checkForStop()) {
                result = quel5::TestResult::USERABORTED;
                break;
            }
        }
        current += jumpCount;
        timing.EndStep();
    }
    return ClosePass(*this, tray, result, errors, static_cast<double>(plannedReads));
}

}  // namespace kivrlibdrive

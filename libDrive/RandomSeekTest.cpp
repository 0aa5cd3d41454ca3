#include "libDrive/RandomSeekTest.h"

#include <algorithm>

#include "ClassLog.h"
#include "PassReporting.h"
#include "PassRules.h"
#include "PassTiming.h"
#include "SectorBuffer.h"
#include "kiv/Log.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/RandomSeekDraw.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/RandomSeekTest";

// Source lines the host sees with this test's events and log lines.
constexpr int kRerunLine = 92;
constexpr int kEndBelowStartLine = 140;
constexpr int kNoSectorSizeLine = 185;
constexpr int kNoBufferLine = 195;
constexpr int kDrawOutOfRangeLine = 234;
constexpr int kTimeLeftLine = 288;

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.RandomSeekTest");
}

}  // namespace

CRandomSeekTest::CRandomSeekTest(Drive& testedDrive) : DriveTest(testedDrive), seeksOfRun(0) {}

quel5::TestResult CRandomSeekTest::Run() {
    // The trace keeps the label it has always had; log readers search for it.
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    return RunCheckedPasses(
        *this, drive, [this] { return DoTesting(); }, kSource, kRerunLine);
}

quel5::TestResult CRandomSeekTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CRandomSeekTest::DoTesting", kSource, __LINE__);
    TrayHold tray(drive);
    quel5::TestResult result = OpenPass(drive, tray, [this] { return Initialize(); });
    if (result != quel5::TestResult::PASS) {
        return result;
    }
    seeksOfRun = numberOfSeeks;
    const uint64_t seeks = seeksOfRun;
    if (endSector < startSector) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                           kEndBelowStartLine, quel5::TestResult::BADPARAMS);
    }
    const uint64_t span = std::max(endSector - startSector, MINIMUM_RANGE);
    if (seeks == 0) {
        tray.Release();
        return quel5::TestResult::BADPARAMS;
    }
    ReadBuffer buffer;
    result = TakeReadBuffer(drive, tray, 1, kSource, {kNoSectorSizeLine, kNoBufferLine}, buffer);
    if (result != quel5::TestResult::PASS) {
        return result;
    }

    SeekDraw draw;
    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    const double plannedSeeks = static_cast<double>(seeks);
    uint32_t errors = 0;
    for (uint64_t seekIndex = 0; seekIndex < seeks; ++seekIndex) {
        // The end sector itself may be drawn. With start = end the span is still 1, so a draw
        // can land one past the range; that ends the test rather than read a stranger's sector.
        const uint64_t sector = startSector + draw.NextOffset(span);
        if (sector < startSector || sector > endSector) {
            tray.Release();
            logger()->log(static_cast<int>(kiv::LogPriority::Warning),
                          L"233 Error in random number calculation. Generated a out of range "
                          L"random number.");
            quel5::DiagModule::warning(
                LibDriveStrings::g_WarnEventTotalSectorsGreaterThanDifference, kSource,
                kDrawOutOfRangeLine);
            return quel5::TestResult::INTERNALERROR;
        }
        drive.PrepareRead();
        result = drive.ReadSectors(sector, 1, buffer.data.get(), buffer.sectorBytes);
        const ReadOutcome outcome = CountRead(*this, result, errors, plannedSeeks);
        if (outcome == ReadOutcome::EndsWithFailure) {
            tray.Release();
            return quel5::TestResult::INTERNALERROR;
        }
        if (outcome == ReadOutcome::TooManyErrors) {
            break;
        }
        if (timing.IsReportDue()) {
            quel5::DiagModule::percentDone(static_cast<unsigned int>(seekIndex * 100 / seeks));
            quel5::DiagModule::progressTimed(1000.0, ReadSectorText(sector, endSector));
            ReportTimeLeft(drive, logger(), kTimeLeftLine, timing, seeks - seekIndex);
            if (quel5::DiagModule::checkForStop()) {
                result = quel5::TestResult::USERABORTED;
                break;
            }
        }
        timing.EndStep();
    }
    return ClosePass(*this, tray, result, errors, plannedSeeks);
}

}  // namespace kivrlibdrive

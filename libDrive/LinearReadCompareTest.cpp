#include "libDrive/LinearReadCompareTest.h"

#include <cstdint>
#include <cstring>

#include "ClassLog.h"
#include "PassReporting.h"
#include "PassRules.h"
#include "PassTiming.h"
#include "SectorBuffer.h"
#include "kiv/Log.h"
#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"
#include "quel5/Value.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/LinearReadCompareTest";

// Source lines the host sees with this test's events and log lines.
constexpr int kEmptyRangeLine = 132;
constexpr int kNoSectorSizeLine = 149;
constexpr int kNoFirstBufferLine = 159;
constexpr int kNoSecondBufferLine = 167;
constexpr int kTimeLeftLine = 213;
constexpr int kCompareFailedLine = 323;

// INTERNALERROR reads a pass puts up with; one more ends it.
constexpr uint32_t kToleratedInternalErrors = 10;

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.LinearReadCompareTest");
}

// Why a read ends the pass early.
enum class ReadStop { None, TooManyFailures, TooManyInternalErrors };

// Counts a read's result: FAIL is an error under the "MaxErrors" rule, INTERNALERROR counts
// towards the tolerated ones, anything else is let pass.
ReadStop countRead(const DriveTest& test, const quel5::TestResult& result, uint32_t& errors,
                   uint32_t& internalErrors, double plannedSteps) {
    if (result == quel5::TestResult::FAIL) {
        ++errors;
        if (MaxErrorsReached(test, errors, plannedSteps)) {
            return ReadStop::TooManyFailures;
        }
    } else if (result == quel5::TestResult::INTERNALERROR) {
        ++internalErrors;
        if (internalErrors > kToleratedInternalErrors) {
            return ReadStop::TooManyInternalErrors;
        }
    }
    return ReadStop::None;
}

}  // namespace

CLinearReadCompareTest::CLinearReadCompareTest(Drive& testedDrive) : DriveTest(testedDrive) {}

quel5::TestResult CLinearReadCompareTest::Run() {
    // The trace keeps the label it has always had; log readers search for it.
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    return RunCheckedPasses(
        *this, drive, [this] { return DoTesting(); }, kSource, __LINE__);
}

quel5::TestResult CLinearReadCompareTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CLinearReadCompareTest::DoTesting", kSource, __LINE__);
    // Kept across passes on purpose: see the class comment.
    static quel5::TestResult result = quel5::TestResult::PASS;
    TrayHold tray(drive);
    const quel5::TestResult opened = OpenPass(drive, tray, [this] { return Initialize(); });
    if (opened != quel5::TestResult::PASS) {
        return opened;
    }
    if (endSector == startSector) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                           kEmptyRangeLine, quel5::TestResult::BADPARAMS);
    }
    ReadBuffer first;
    const quel5::TestResult buffered =
        TakeReadBuffer(drive, tray, 1, kSource, {kNoSectorSizeLine, kNoFirstBufferLine}, first);
    if (buffered != quel5::TestResult::PASS) {
        return buffered;
    }
    const uint32_t size = first.sectorBytes;
    std::unique_ptr<unsigned char[]> second = AllocateSectorBuffer(size);
    if (second == nullptr) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventMemoryAllocationError, kSource,
                           kNoSecondBufferLine, quel5::TestResult::INTERNALERROR);
    }

    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    const uint64_t rangeSectors = endSector - startSector;
    const double plannedSteps = static_cast<double>(rangeSectors / jumpCount);
    uint32_t errors = 0;
    uint32_t internalErrors = 0;
    ReadStop stop = ReadStop::None;
    uint64_t current = startSector;
    while (current < endSector) {
        if (timing.IsReportDue()) {
            ReportTimeLeft(drive, logger(), kTimeLeftLine, timing,
                           (endSector - current) / jumpCount);
        }
        quel5::DiagModule::percentDone(
            static_cast<unsigned int>((current - startSector) * 100 / rangeSectors));
        quel5::DiagModule::progressTimed(1000.0, ReadSectorText(current, endSector));

        std::memset(first.data.get(), 0, size);
        std::memset(second.get(), 0, size);
        drive.PrepareRead();
        const quel5::TestResult firstRead = drive.ReadSectors(current, 1, first.data.get(), size);
        stop = countRead(*this, firstRead, errors, internalErrors, plannedSteps);
        if (stop != ReadStop::None) {
            break;
        }
        if (firstRead != quel5::TestResult::PASS) {
            // Nothing to compare: on to the next sector without polling or timing this step.
            current += jumpCount;
            continue;
        }
        drive.PrepareRead();
        const quel5::TestResult secondRead = drive.ReadSectors(current, 1, second.get(), size);
        stop = countRead(*this, secondRead, errors, internalErrors, plannedSteps);
        if (stop != ReadStop::None) {
            break;
        }
        if (secondRead == quel5::TestResult::PASS &&
            std::memcmp(first.data.get(), second.get(), size) != 0) {
            result = quel5::TestResult::FAIL;
            LibDriveStrings::g_errorEventDataCompareFailed->setVariable(L"TestSector",
                                                                        quel5::Value(current));
            quel5::DiagModule::error(LibDriveStrings::g_errorEventDataCompareFailed, kSource,
                                     kCompareFailedLine);
            ++errors;
            if (MaxErrorsReached(*this, errors, plannedSteps)) {
                DisplayExitErrorEvent(errors, plannedSteps);
                break;
            }
        }
        if (quel5::DiagModule::checkForStop()) {
            result = quel5::TestResult::USERABORTED;
            break;
        }
        current += jumpCount;
        timing.EndStep();
    }
    if (stop == ReadStop::TooManyFailures) {
        DisplayExitErrorEvent(errors, plannedSteps);
        tray.Release();
        return quel5::TestResult::FAIL;
    }
    if (stop == ReadStop::TooManyInternalErrors) {
        tray.Release();
        return quel5::TestResult::FAIL;
    }
    return ClosePass(*this, tray, result, errors, plannedSteps);
}

}  // namespace kivrlibdrive

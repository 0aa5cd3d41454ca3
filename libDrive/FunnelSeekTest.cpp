#include "libDrive/FunnelSeekTest.h"

#include <cstdint>

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

const wchar_t* const kSource = L"libDrive/FunnelSeekTest";

// Source lines the host sees with this test's events and log lines.
constexpr int kRerunLine = 76;
constexpr int kEmptyRangeLine = 126;
constexpr int kNoSectorSizeLine = 144;
constexpr int kNoBufferLine = 154;
constexpr int kTimeLeftLine = 250;

constexpr unsigned int kHalfWayPercent = 50;

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.FunnelSeekTest");
}

quel5::LocalizedString* funnelText(uint64_t lowSector, uint64_t highSector, uint64_t endSector) {
    quel5::LocalizedString* text = LibDriveStrings::g_ReadSectorFunnel;
    text->setVariable(L"ReadSector1", quel5::Value(lowSector));
    text->setVariable(L"ReadSector2", quel5::Value(highSector));
    text->setVariable(L"EndSector", quel5::Value(endSector));
    return text;
}

}  // namespace

CFunnelSeekTest::CFunnelSeekTest(Drive& testedDrive) : DriveTest(testedDrive) {}

quel5::TestResult CFunnelSeekTest::Run() {
    // The trace keeps the label it has always had; log readers search for it.
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    return RunCheckedPasses(
        *this, drive, [this] { return DoTesting(); }, kSource, kRerunLine);
}

quel5::TestResult CFunnelSeekTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CFunnelSeekTest::DoTesting", kSource, __LINE__);
    TrayHold tray(drive);
    quel5::TestResult result = OpenPass(drive, tray, [this] { return Initialize(); });
    if (result != quel5::TestResult::PASS) {
        return result;
    }
    if (endSector == startSector) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                           kEmptyRangeLine, quel5::TestResult::BADPARAMS);
    }
    ReadBuffer buffer;
    result = TakeReadBuffer(drive, tray, 1, kSource, {kNoSectorSizeLine, kNoBufferLine}, buffer);
    if (result != quel5::TestResult::PASS) {
        return result;
    }

    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    const uint64_t rangeSectors = endSector - startSector;
    const double plannedPairs = static_cast<double>(rangeSectors / jumpCount);
    uint32_t errors = 0;
    bool pastHalfWay = false;
    uint64_t lowSector = startSector;
    uint64_t highSector = endSector - 1;
    while (lowSector < endSector) {
        drive.PrepareRead();
        bool stop = false;
        for (const uint64_t sector : {lowSector, highSector}) {
            result = drive.ReadSectors(sector, 1, buffer.data.get(), buffer.sectorBytes);
            const ReadOutcome outcome = CountRead(*this, result, errors, plannedPairs);
            if (outcome == ReadOutcome::EndsWithFailure) {
                tray.Release();
                return quel5::TestResult::INTERNALERROR;
            }
            if (outcome == ReadOutcome::TooManyErrors) {
                stop = true;
                break;
            }
        }
        if (stop) {
            break;
        }
        if (timing.IsReportDue()) {
            const uint64_t done = lowSector - startSector;
            const auto percent = static_cast<unsigned int>(done * 100 / rangeSectors);
            quel5::DiagModule::percentDone(percent);
            quel5::DiagModule::progressTimed(1000.0, funnelText(lowSector, highSector, endSector));
            // The end is an address and `done` an offset: the mix is how the estimate has
            // always been figured, so hosts see the same numbers.
            ReportTimeLeft(drive, logger(), kTimeLeftLine, timing, (endSector - done) / jumpCount);
            // Past half-way the heads turn outward again; let the drive prepare once for it.
            if (percent > kHalfWayPercent && !pastHalfWay) {
                drive.PrepareRead();
                pastHalfWay = true;
            }
            if (quel5::DiagModule::checkForStop()) {
                result = quel5::TestResult::USERABORTED;
                break;
            }
        }
        lowSector += jumpCount;
        highSector -= jumpCount;
        timing.EndStep();
    }
    return ClosePass(*this, tray, result, errors, plannedPairs);
}

}  // namespace kivrlibdrive

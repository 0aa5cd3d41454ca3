#include "libDrive/SurfaceScanTest.h"

#include <algorithm>
#include <cstdint>

#include "ClassLog.h"
#include "PassReporting.h"
#include "PassRules.h"
#include "PassTiming.h"
#include "SectorBuffer.h"
#include "SurfaceScanStride.h"
#include "kiv/Log.h"
#include "kiv/String.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Parameters.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/SurfaceScanTest";

// Source lines the host sees with this test's events and log lines.
constexpr int kRerunLine = 82;
constexpr int kEmptyRangeLine = 136;
constexpr int kNoSectorsPerTrackLine = 145;
constexpr int kNoSectorSizeLine = 178;
constexpr int kNoBufferLine = 188;
constexpr int kTimeLeftLine = 263;

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.SurfaceScanTest");
}

void log(kiv::LogPriority priority, const kiv::String& text) {
    logger()->log(static_cast<int>(priority), text);
}

kiv::String number(uint64_t value) { return kiv::String::fromNumber(value); }

// "NumberOfSeeks" when it asks for a number of blocks; 0 when unset or 0.
uint32_t requestedSeeks() {
    return g_NumberOfSeeks->isset() ? g_NumberOfSeeks->value().valueUint32() : 0;
}

}  // namespace

CSurfaceScanTest::CSurfaceScanTest(Drive& testedDrive) : DriveTest(testedDrive) {}

quel5::TestResult CSurfaceScanTest::Run() {
    // The trace keeps the label it has always had; log readers search for it.
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    return RunCheckedPasses(
        *this, drive, [this] { return DoTesting(); }, kSource, kRerunLine);
}

quel5::TestResult CSurfaceScanTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CSurfaceScanTest::DoTesting", kSource, __LINE__);
    TrayHold tray(drive);
    quel5::TestResult result = OpenPass(drive, tray, [this] { return Initialize(); });
    if (result != quel5::TestResult::PASS) {
        return result;
    }
    const uint64_t rangeSectors = endSector - startSector;
    log(kiv::LogPriority::Detail, L"131 Will test " + number(rangeSectors) +
                                      L" sectors in the range " + number(startSector) + L" to " +
                                      number(endSector));
    if (rangeSectors == 0) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                           kEmptyRangeLine, quel5::TestResult::BADPARAMS);
    }
    const uint32_t sectorsPerTrack = drive.GetSectorsPerTrack();
    if (sectorsPerTrack == 0) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventSectorsPerTrackThanZero, kSource,
                           kNoSectorsPerTrackLine, quel5::TestResult::INTERNALERROR);
    }
    uint32_t readAmount = drive.GetOptimalReadAmount();
    if (readAmount == 0) {
        readAmount = sectorsPerTrack;
    }
    uint64_t stride = StrideForPercent(readAmount, sectorPercentToTest);
    if (const uint32_t seeks = requestedSeeks(); seeks != 0) {
        const uint64_t seekStride = StrideForSeeks(rangeSectors, seeks);
        if (seekStride <= readAmount) {
            stride = seekStride;
        } else {
            log(kiv::LogPriority::Detail,
                L"161 NumberOfSeeks set too high; adjusting range to prevent coverage overlaps");
            stride = readAmount;
        }
    }
    ReadBuffer buffer;
    result = TakeReadBuffer(drive, tray, readAmount, kSource, {kNoSectorSizeLine, kNoBufferLine},
                            buffer);
    if (result != quel5::TestResult::PASS) {
        return result;
    }
    const uint32_t size = buffer.sectorBytes;

    PassTiming timing(L"doTesting() elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    // A block is read even when the stride is longer than the range, so one is always planned.
    const double plannedBlocks = static_cast<double>(std::max<uint64_t>(rangeSectors / stride, 1));
    uint32_t errors = 0;
    uint64_t current = startSector;
    while (current < endSector) {
        drive.PrepareRead();
        if (current + readAmount > endSector) {
            readAmount = static_cast<uint32_t>(endSector - current);
        }
        result = drive.ReadSectors(current, readAmount, buffer.data.get(), size * readAmount);
        if (result != quel5::TestResult::PASS) {
            log(kiv::LogPriority::Warning, L"222 Problem when testing sector " + number(current) +
                                               L" to " + number(current + readAmount));
            const ReadOutcome outcome = CountRead(*this, result, errors, plannedBlocks);
            if (outcome == ReadOutcome::EndsWithFailure) {
                tray.Release();
                return quel5::TestResult::INTERNALERROR;
            }
            if (outcome == ReadOutcome::TooManyErrors) {
                break;
            }
        }
        if (timing.IsReportDue()) {
            quel5::DiagModule::percentDone(
                static_cast<unsigned int>((current - startSector) * 100 / rangeSectors));
            quel5::DiagModule::progress(ReadSectorText(current, endSector));
            ReportTimeLeft(drive, logger(), kTimeLeftLine, timing, (endSector - current) / stride);
            if (quel5::DiagModule::checkForStop()) {
                result = quel5::TestResult::USERABORTED;
                break;
            }
        }
        // Stop at the end rather than wrap around it when the stride is longer than what is
        // left.
        current = endSector - current <= stride ? endSector : current + stride;
        timing.EndStep();
    }
    return ClosePass(*this, tray, result, errors, plannedBlocks);
}

}  // namespace kivrlibdrive

#include "libDrive/PatternTest.h"

#include <algorithm>
#include <array>

#include "ClassLog.h"
#include "DestructivePass.h"
#include "InternalParameters.h"
#include "PassReporting.h"
#include "PassRules.h"
#include "PassTiming.h"
#include "kiv/Log.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Parameters.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/PatternTest";

// Each entry is one byte repeated four times; a sector is filled with its low byte.
constexpr std::array<uint32_t, 18> kPatterns = {
    0xFFFFFFFF, 0x00000000, 0xF0F0F0F0, 0x0F0F0F0F, 0xAAAAAAAA, 0x55555555,
    0x80808080, 0x40404040, 0x20202020, 0x10101010, 0x08080808, 0x04040404,
    0x02020202, 0x01010101, 0x11111111, 0x22222222, 0x44444444, 0x88888888,
};

// Where the published event and log lines of this test lie.
enum EventLine {
    kRerunLine = 85,
    kEmptyRangeLine = 147,
    kMaxErrorsLine = 222,
    kTimeLeftLogLine = 252,
    kAllocationLine = 304,
    kRestoreOnStopLine = 343,
    kMismatchLine = 401,
    kWriteBackLine = 423,
};

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.PatternTest");
}

}  // namespace

CPatternTest::CPatternTest(Drive& testedDrive) : DriveTest(testedDrive) {}

quel5::TestResult CPatternTest::Run() {
    // The trace label is the one every hard-drive test's Run has always used.
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    return RunCheckedPasses(
        *this, drive, [this] { return DoTesting(); }, kSource, kRerunLine,
        UnqualifiedMediaPrompt::AfterFailure);
}

quel5::TestResult CPatternTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CPatternTest::DoTesting", kSource, __LINE__);
    TrayHold tray(drive);
    const quel5::TestResult opened = OpenPass(drive, tray, [this] { return Initialize(); });
    if (opened != quel5::TestResult::PASS) {
        return opened;
    }
    VolumeHold volumes(drive);
    const quel5::TestResult locked = volumes.Take();
    if (locked != quel5::TestResult::PASS) {
        tray.Release();
        return locked;
    }
    drive.PrepareRead();
    if (startSector == endSector) {
        volumes.Release();
        tray.Release();
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                                   kEmptyRangeLine);
        return quel5::TestResult::BADPARAMS;
    }

    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.");
    timing.Start();
    const uint64_t rangeSectors = endSector - startSector;
    uint32_t errors = 0;
    quel5::TestResult running = quel5::TestResult::PASS;
    uint64_t current = startSector;
    while (current < endSector) {
        if (current == 0) {
            // Sector 0 holds the partition table: never overwrite it, test sector 1 instead.
            current = 1;
            if (current >= endSector) {
                break;  // the range held only sector 0; nothing outside it is written
            }
        }
        quel5::DiagModule::percentDone(
            static_cast<unsigned int>((current - startSector) * 100 / rangeSectors));
        quel5::DiagModule::progressTimed(1000.0, ReadSectorText(current, endSector));

        const uint32_t sectorBytes = drive.GetBytesPerSector();
        running = PatternTestSector(current, sectorBytes, errors);
        if (running != quel5::TestResult::PASS) {
            if (EndsDestructivePass(running)) {
                volumes.Release();
                tray.Release();
                return running;
            }
            if (errors >= GetMaxErrors()) {
                volumes.Release();
                tray.Release();
                ReportMaxErrorsExceeded(GetMaxErrors(), kSource, kMaxErrorsLine);
                return quel5::TestResult::FAIL;
            }
        }
        if (quel5::DiagModule::checkForStop()) {
            volumes.Release();
            tray.Release();
            return quel5::TestResult::USERABORTED;
        }
        if (timing.IsReportDue()) {
            ReportTimeLeft(drive, logger(), kTimeLeftLogLine, timing,
                           (endSector - current) / jumpCount);
        }
        current += jumpCount;
        timing.EndStep();
    }
    volumes.Release();
    tray.Release();
    quel5::DiagModule::percentDone(100);
    return errors > 0 ? quel5::TestResult::FAIL : running;
}

quel5::TestResult CPatternTest::PatternTestSector(const uint64_t& sector,
                                                  const uint32_t& sectorBytes, uint32_t& errors) {
    AreaBuffers buffers;
    if (!buffers.Allocate(sectorBytes)) {
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventMemoryAllocationError, kSource,
                                   kAllocationLine);
        return quel5::TestResult::INTERNALERROR;
    }
    if (ShouldPreserveData()) {
        const quel5::TestResult saved = drive.ReadSectors(sector, 1, buffers.saved(), sectorBytes);
        if (saved != quel5::TestResult::PASS) {
            ++errors;
            return saved;
        }
    }
    // Never past the table, whatever "NumberOfPatterns" says.
    const uint32_t count = std::min<uint32_t>(GetNumPatterns(), kPatterns.size());
    for (uint32_t i = 0; i < count; ++i) {
        if (quel5::DiagModule::checkForStop()) {
            if (ShouldPreserveData() &&
                RestoreSector(sector, buffers.saved(), sectorBytes) != quel5::TestResult::PASS) {
                ReportUnableToRestore(*LibDriveStrings::g_PatternTest, sector, endSector, kSource,
                                      kRestoreOnStopLine);
                ++errors;
            }
            return quel5::TestResult::USERABORTED;
        }
        buffers.FillWritten(static_cast<unsigned char>(kPatterns[i] & 0xFF));
        const quel5::TestResult written =
            drive.WriteSectors(sector, 1, buffers.written(), sectorBytes);
        if (written != quel5::TestResult::PASS) {
            ++errors;
            return written;
        }
        const quel5::TestResult read =
            drive.ReadSectors(sector, 1, buffers.readBack(), sectorBytes);
        if (read != quel5::TestResult::PASS) {
            ++errors;
            return read;
        }
        if (!buffers.ReadBackMatches()) {
            // The sector keeps the pattern: what it returned instead is the evidence.
            LibDriveStrings::g_errorEventPatternMismatchError->setVariable(L"TestSector",
                                                                           quel5::Value(sector));
            quel5::DiagModule::error(LibDriveStrings::g_errorEventPatternMismatchError, kSource,
                                     kMismatchLine);
            ++errors;
            return quel5::TestResult::FAIL;
        }
    }
    // Written back even when nothing was saved: the sector then holds zeros, not the last
    // pattern.
    const quel5::TestResult restored =
        WriteBackArea(drive, *LibDriveStrings::g_PatternTest, sector, endSector, buffers.saved(),
                      sectorBytes, kSource, kWriteBackLine);
    return errors != 0 ? quel5::TestResult::FAIL : restored;
}

uint32_t CPatternTest::GetNumPatterns() const { return g_NumberOfPatterns->value().valueUint32(); }

bool CPatternTest::ShouldPreserveData() const { return kivrlibdrive::ShouldPreserveData(); }

quel5::TestResult CPatternTest::RestoreSector(uint64_t sector, const void* data, uint32_t bytes) {
    return kivrlibdrive::RestoreSector(drive, sector, data, bytes);
}

}  // namespace kivrlibdrive

#include "libDrive/CacheTest.h"

#include <array>

#include "ClassLog.h"
#include "DestructivePass.h"
#include "InternalParameters.h"
#include "PassReporting.h"
#include "PassRules.h"
#include "PassTiming.h"
#include "kiv/Log.h"
#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/CacheTest";

constexpr uint64_t kZoneSectors = 32768;
constexpr uint32_t kBlockSectors = 256;
constexpr uint32_t kBlocksPerPass = 128;
// One fill per pass; a block is filled with the entry's low byte (0x34 for the last).
constexpr std::array<uint32_t, 5> kFills = {0x0000, 0xFFFF, 0xAAAA, 0x5555, 0x1234};
constexpr uint32_t kPasses = kFills.size();
// Per-block durations kept for the time-left estimate.
constexpr std::size_t kTimedBlocks = 100;

// Where the published event and log lines of this test lie.
enum EventLine {
    kRerunLine = 86,
    kZoneTooLowLine = 138,
    kMaxErrorsLine = 204,
    kTimeLeftLogLine = 234,
    kAllocationLine = 288,
    kRestoreOnStopLine = 321,
    kMismatchLine = 374,
    kWriteBackLine = 395,
};

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.CacheTest");
}

}  // namespace

CCacheTest::CCacheTest(Drive& testedDrive) : DriveTest(testedDrive) {}

quel5::TestResult CCacheTest::Run() {
    // The trace label is the one every hard-drive test's Run has always used.
    const ScopedTrace trace(logger(), L"CLinearSeekTest::Run", kSource, __LINE__);
    return RunCheckedPasses(
        *this, drive, [this] { return DoTesting(); }, kSource, kRerunLine,
        UnqualifiedMediaPrompt::AfterFailure);
}

quel5::TestResult CCacheTest::DoTesting() {
    const ScopedTrace trace(logger(), L"CCacheTest::DoTesting", kSource, __LINE__);
    if (drive.NeedsMediaCheck()) {
        const quel5::TestResult media = drive.CheckMedia(false);
        if (media != quel5::TestResult::PASS) {
            return media;
        }
    }
    const quel5::TestResult initialized = Initialize();
    if (initialized != quel5::TestResult::PASS) {
        return initialized;
    }
    VolumeHold volumes(drive);
    const quel5::TestResult locked = volumes.Take();
    if (locked != quel5::TestResult::PASS) {
        return locked;
    }
    drive.PrepareRead();
    if (endSector < kZoneSectors) {
        volumes.Release();
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero, kSource,
                                   kZoneTooLowLine);
        return quel5::TestResult::BADPARAMS;
    }

    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.", kTimedBlocks);
    timing.Start();
    uint32_t errors = 0;
    quel5::TestResult running = quel5::TestResult::PASS;
    for (uint32_t pass = 0; pass < kPasses; ++pass) {
        uint64_t sector = endSector - kZoneSectors;
        for (uint32_t block = 0; block < kBlocksPerPass; ++block) {
            quel5::DiagModule::percentDone(pass * 100 / kPasses +
                                           block * 100 / (kPasses * kBlocksPerPass));
            quel5::DiagModule::progressTimed(128.0, ReadSectorText(sector, endSector));

            const uint32_t sectorBytes = drive.GetBytesPerSector();
            running = CacheTestSector(sector, sectorBytes, pass, errors);
            if (running != quel5::TestResult::PASS) {
                if (EndsDestructivePass(running)) {
                    volumes.Release();
                    return running;
                }
                ++errors;
                // The raw parameter: 0 means the first failed block ends the test.
                if (errors >= g_MaxErrors->value().valueUint32()) {
                    volumes.Release();
                    ReportMaxErrorsExceeded(GetMaxErrors(), kSource, kMaxErrorsLine);
                    quel5::DiagModule::percentDone(100);
                    return quel5::TestResult::FAIL;
                }
            }
            if (quel5::DiagModule::checkForStop()) {
                volumes.Release();
                return quel5::TestResult::USERABORTED;
            }
            if (timing.IsReportDue()) {
                // The block index is added, not subtracted: the estimate has always been made so.
                ReportTimeLeft(drive, logger(), kTimeLeftLogLine, timing,
                               (kPasses - 1 - pass) * kBlocksPerPass + block);
            }
            sector += kBlockSectors;
            timing.EndStep();
        }
    }
    volumes.Release();
    quel5::DiagModule::percentDone(100);
    return errors != 0 ? quel5::TestResult::FAIL : running;
}

quel5::TestResult CCacheTest::CacheTestSector(const uint64_t& sector, const uint32_t& sectorBytes,
                                              uint32_t& pass, uint32_t& /*errors*/) {
    AreaBuffers buffers;
    const uint64_t blockBytes = static_cast<uint64_t>(kBlockSectors) * sectorBytes;
    if (!buffers.Allocate(blockBytes)) {
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventMemoryAllocationError, kSource,
                                   kAllocationLine);
        return quel5::TestResult::INTERNALERROR;
    }
    const auto bytes = static_cast<uint32_t>(blockBytes);
    // A sector count of 1 with a buffer of the whole block: the drive transfers the buffer.
    if (ShouldPreserveData()) {
        const quel5::TestResult saved = drive.ReadSectors(sector, 1, buffers.saved(), bytes);
        if (saved != quel5::TestResult::PASS) {
            return saved;
        }
    }
    if (quel5::DiagModule::checkForStop()) {
        if (ShouldPreserveData() &&
            RestoreSector(sector, buffers.saved(), bytes) != quel5::TestResult::PASS) {
            ReportUnableToRestore(*LibDriveStrings::g_CacheTest, sector, endSector, kSource,
                                  kRestoreOnStopLine);
        }
        return quel5::TestResult::USERABORTED;
    }
    buffers.FillWritten(static_cast<unsigned char>(kFills[pass] & 0xFF));
    const quel5::TestResult written = drive.WriteSectors(sector, 1, buffers.written(), bytes);
    if (written != quel5::TestResult::PASS) {
        return written;
    }
    const quel5::TestResult read = drive.ReadSectors(sector, 1, buffers.readBack(), bytes);
    if (read != quel5::TestResult::PASS) {
        return read;
    }
    const bool mismatch = !buffers.ReadBackMatches();
    if (mismatch) {
        LibDriveStrings::g_errorEventPatternMismatchError->setVariable(L"TestSector",
                                                                       quel5::Value(sector));
        quel5::DiagModule::error(LibDriveStrings::g_errorEventPatternMismatchError, kSource,
                                 kMismatchLine);
    }
    // Written back even when nothing was saved: the block then holds zeros, not the fill.
    const quel5::TestResult restored =
        WriteBackArea(drive, *LibDriveStrings::g_CacheTest, sector, endSector, buffers.saved(),
                      bytes, kSource, kWriteBackLine);
    return mismatch ? quel5::TestResult::FAIL : restored;
}

bool CCacheTest::ShouldPreserveData() const { return kivrlibdrive::ShouldPreserveData(); }

quel5::TestResult CCacheTest::RestoreSector(uint64_t sector, const void* data, uint32_t bytes) {
    return kivrlibdrive::RestoreSector(drive, sector, data, bytes);
}

}  // namespace kivrlibdrive

// What the two destructive tests (pattern and cache) share: whether a tested area's data is
// saved and written back, the write-back itself, the warning when it fails, the three buffers a
// tested area needs and the hold on the drive's volumes. Internal to the library.
#pragma once

#include <cstdint>
#include <memory>

#include "libDrive/Drive.h"
#include "quel5/Event.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

// The boolean value of the "PreserveData" parameter; false when it is not set.
bool ShouldPreserveData();

// True for the results of a tested area after which a destructive test goes no further:
// USERABORTED, INTERNALERROR and CANNOTRUN. Other failures are counted and the test goes on.
bool EndsDestructivePass(const quel5::TestResult& result);

// Raises "MAX_ERRORS_EXCEEDED" as an error from `source`, line `line`, with "MaxError" =
// `maxErrors`.
void ReportMaxErrorsExceeded(uint32_t maxErrors, const wchar_t* source, int line);

// Writes `bytes` bytes of `data` back at `sector` through the drive's WriteSectors with a
// sector count of 1 (the drive transfers the whole buffer). Returns what the drive answers.
quel5::TestResult RestoreSector(Drive& drive, uint64_t sector, const void* data, uint32_t bytes);

// Raises "UNABLE_TO_RESTORE_SECTOR" as a warning from `source`, line `line`, with "TestName" (the
// localized text of `testName`), "TestSector" and "EndSector".
void ReportUnableToRestore(const quel5::LocalizedString& testName, uint64_t sector,
                           uint64_t endSector, const wchar_t* source, int line);

// The write-back that closes a tested area: RestoreSector(), and ReportUnableToRestore() when the
// drive answers neither PASS nor INTERNALERROR. Returns what the drive answered.
quel5::TestResult WriteBackArea(Drive& drive, const quel5::LocalizedString& testName,
                                uint64_t sector, uint64_t endSector, const void* data,
                                uint32_t bytes, const wchar_t* source, int line);

// The buffers of one tested area, each `bytes` long: the data found there (saved), what the test
// writes (written) and what it reads back (readBack).
class AreaBuffers {
public:
    // False when any of the three cannot be allocated, or `bytes` is 0.
    bool Allocate(uint64_t bytes);

    unsigned char* saved() { return saved_.get(); }
    unsigned char* written() { return written_.get(); }
    unsigned char* readBack() { return readBack_.get(); }
    // Fills the written buffer with `fill`.
    void FillWritten(unsigned char fill);
    // True when the read-back buffer holds what was written.
    bool ReadBackMatches() const;

private:
    std::unique_ptr<unsigned char[]> saved_;
    std::unique_ptr<unsigned char[]> written_;
    std::unique_ptr<unsigned char[]> readBack_;
    uint32_t bytes_ = 0;
};

// Keeps the drive's volumes locked while a destructive pass writes: Take() calls lock(); a lock
// taken is given back with unLock() exactly once, at Release() or at destruction (when the pass
// is left by an exception).
class VolumeHold {
public:
    explicit VolumeHold(Drive& drive) : drive_(drive) {}
    ~VolumeHold();
    VolumeHold(const VolumeHold&) = delete;
    VolumeHold& operator=(const VolumeHold&) = delete;

    // What lock() answers; PASS means the volumes are held.
    quel5::TestResult Take();
    void Release();

private:
    Drive& drive_;
    bool held_ = false;
};

}  // namespace kivrlibdrive

// kivrlibdrive::CCacheTest: the destructive test of the drive's write path through its cache.
// Over the last 32768 sectors below the end of the test range it writes blocks of 256 sectors
// with one fill byte, reads each block straight back, compares it and writes the block's earlier
// contents back; five passes, each with its own fill byte (0x00, 0xFF, 0xAA, 0x55, 0x34).
//
// Parameters: "PreserveData" (BOOLEAN: save each block first so that the write-back restores it;
// when false the write-back fills the block with zeros) and "MaxErrors" (the failed blocks after
// which the test stops; 0 stops at the first). The start of the range plays no part. The
// drive's volumes are held locked for the whole test; the tray is left alone.
//
// Events are raised from "libDrive/CacheTest"; progress is "READ_SECTOR" with "ReadSector" and
// "EndSector", offered on every block with an interval of 128 ms.
#pragma once

#include <cstdint>

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CCacheTest : public DriveTest {
public:
    // `testedDrive` is not owned and must outlive the test.
    explicit CCacheTest(Drive& testedDrive);
    CCacheTest(const CCacheTest& other) = default;

    // NODEVICE for a drive without a handle. Otherwise one run of five passes; a FAIL is
    // followed by one more run (after "RERUN_TEST") when the drive allows and confirms it, and a
    // run still failing lets the drive ask for qualified media; a PASS is replaced by the
    // drive's GetPASSResult(). A run returns BADPARAMS when the range ends below sector 32768,
    // FAIL when any block failed (a mismatch raises "MSG_PATTERN_MISMATCH_ERROR", reaching
    // "MaxErrors" raises "MAX_ERRORS_EXCEEDED"), USERABORTED after a stop request, DEVICEBUSY
    // when the volumes cannot be locked, and the frame's results for an unusable range or drive.
    quel5::TestResult Run() override;

private:
    quel5::TestResult DoTesting();
    // Saves (when data is preserved), fills, writes, reads back and compares the block of 256
    // sectors at `sector` with the fill byte of `pass`, then writes the saved block back.
    // Returns FAIL after a mismatch, USERABORTED after a stop request, INTERNALERROR when the
    // buffers cannot be had, a failed transfer's result, otherwise the write-back's result.
    // `errors` is counted by the caller.
    quel5::TestResult CacheTestSector(const uint64_t& sector, const uint32_t& sectorBytes,
                                      uint32_t& pass, uint32_t& errors);
    bool ShouldPreserveData() const;
    quel5::TestResult RestoreSector(uint64_t sector, const void* data, uint32_t bytes);
};

}  // namespace kivrlibdrive

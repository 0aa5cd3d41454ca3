// kivrlibdrive::CPatternTest: the destructive write test. At every jumpCount-th sector of the
// test range it writes a series of fixed byte patterns, reads each back and compares it with
// what was written, then writes the sector's earlier contents back.
//
// Parameters: "NumberOfPatterns" (UINT32, how many of the 18 patterns are used, in table order;
// values above 18 use all 18) and "PreserveData" (BOOLEAN: save each sector before the patterns
// so that the write-back restores it; when false the write-back fills the sector with zeros).
// Sector 0 is never written. The drive's volumes are held locked for the whole pass.
//
// Events are raised from "libDrive/PatternTest"; progress is "READ_SECTOR" with "ReadSector"
// and "EndSector", offered on every sector with a one-second interval.
#pragma once

#include <cstdint>

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CPatternTest : public DriveTest {
public:
    // `testedDrive` is not owned and must outlive the test.
    explicit CPatternTest(Drive& testedDrive);
    CPatternTest(const CPatternTest& other) = default;

    // NODEVICE for a drive without a handle. Otherwise one pass; a FAIL is followed by one more
    // pass (after "RERUN_TEST") when the drive allows and confirms it, and a pass still failing
    // lets the drive ask for qualified media; a PASS is replaced by the drive's GetPASSResult().
    // A pass returns FAIL when any sector failed (a mismatch raises
    // "MSG_PATTERN_MISMATCH_ERROR"; reaching "MaxErrors" raises "MAX_ERRORS_EXCEEDED"),
    // USERABORTED after a stop request, DEVICEBUSY when the volumes cannot be locked, and the
    // frame's results for an unusable range or drive.
    quel5::TestResult Run() override;

private:
    quel5::TestResult DoTesting();
    // Saves (when data is preserved), writes, reads back and compares every pattern at
    // `sector`, then writes the saved data back. Adds 1 to `errors` for a failed transfer or a
    // mismatch. Returns FAIL once `errors` is not 0 (earlier sectors included), USERABORTED
    // after a stop request, INTERNALERROR when the buffers cannot be had, otherwise the
    // write-back's result.
    quel5::TestResult PatternTestSector(const uint64_t& sector, const uint32_t& sectorBytes,
                                        uint32_t& errors);
    // "NumberOfPatterns" as set (not cut to the table).
    uint32_t GetNumPatterns() const;
    bool ShouldPreserveData() const;
    quel5::TestResult RestoreSector(uint64_t sector, const void* data, uint32_t bytes);
};

}  // namespace kivrlibdrive

// kivrlibdrive::CSurfaceScanTest: reads the surface in blocks from the start of the test range
// to its end, so that "SectorPercentToTest" of the range is read.
//
// A block is the drive's optimal read amount (its sectors per track when it has none). Blocks
// start a stride apart: read amount * 100 / percent sectors, or, when "NumberOfSeeks" is set
// and not 0, range / NumberOfSeeks when that is at most one block (blocks then overlap) and one
// block otherwise. A stride is never below 1 sector. The last block is shortened to end at the
// end of the range. Every block that does not read back is one error, judged by the rules of
// DriveTest against range / stride planned blocks (at least 1). Progress ("READ_SECTOR"), the
// percentage, the time left and the stop request are handled at most about once a second.
// Events are raised from "libDrive/SurfaceScanTest". Not re-entrant: one surface scan at a time
// per process.
#pragma once

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CSurfaceScanTest : public DriveTest {
public:
    // `testedDrive` is not owned and must outlive the test.
    explicit CSurfaceScanTest(Drive& testedDrive);
    CSurfaceScanTest(const CSurfaceScanTest& other) = default;

    // NODEVICE for a drive without a handle. Otherwise one pass; a FAIL is followed by one more
    // pass (after "RERUN_TEST") when the drive allows and confirms it; a PASS is replaced by the
    // drive's GetPASSResult(). A pass answers BADPARAMS for an unusable range, INTERNALERROR for
    // a drive without a geometry, a buffer or a usable read, USERABORTED after a stop request.
    quel5::TestResult Run() override;

private:
    quel5::TestResult DoTesting();
};

}  // namespace kivrlibdrive

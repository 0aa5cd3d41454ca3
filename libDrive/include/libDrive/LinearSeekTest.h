// kivrlibdrive::CLinearSeekTest: sweeps the heads across the test range, reading one sector at
// every jumpCount-th sector from the start of the range to its end.
//
// Failed reads are counted and judged by the rules of DriveTest. Progress ("READ_SECTOR" with
// "ReadSector" and "EndSector"), the percentage, the estimated time left and the host's stop
// request are handled at most about once a second. Events are raised from
// "libDrive/LinearSeekTest".
#pragma once

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CLinearSeekTest : public DriveTest {
public:
    // `testedDrive` is not owned and must outlive the test.
    explicit CLinearSeekTest(Drive& testedDrive);

    // NODEVICE for a drive without a handle. Otherwise one pass; a FAIL is followed by one more
    // pass (after "RERUN_TEST") when the drive allows and confirms it; a PASS is replaced by the
    // drive's GetPASSResult(). Other results as DoTesting gives them: BADPARAMS, WARN or
    // INTERNALERROR for an unusable range or drive, USERABORTED after a stop request.
    quel5::TestResult Run() override;

private:
    // One pass over the range; the tray is locked for its length.
    quel5::TestResult DoTesting();
};

}  // namespace kivrlibdrive

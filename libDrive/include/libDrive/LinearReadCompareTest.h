// kivrlibdrive::CLinearReadCompareTest: walks the test range upward by the jump count, reads
// every visited sector twice and compares the two copies. A sector that reads differently on two
// consecutive reads is a data-compare error ("DATA_COMPARE_FAILED" with "TestSector"). Nothing
// is written.
//
// Reads that answer FAIL are counted with the compare errors and judged by the rules of
// DriveTest against range / jump planned steps; ten reads answering INTERNALERROR are
// tolerated, the eleventh fails the test. Other read results are ignored. A step whose first
// read fails goes straight on to the next sector. Progress ("READ_SECTOR", timed at 1000 ms) and
// the percentage are reported on every step, the stop request is polled on every step whose
// first read passed, the time left at most about once a second. Events are raised from
// "libDrive/LinearReadCompareTest".
//
// The working result of a pass lives in static storage and only a compare error (FAIL) or a
// stop (USERABORTED) changes it, so it carries over into later passes in the same process: a
// clean pass reports what the last such pass left. Not re-entrant.
#pragma once

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CLinearReadCompareTest : public DriveTest {
public:
    // `testedDrive` is not owned and must outlive the test.
    explicit CLinearReadCompareTest(Drive& testedDrive);
    CLinearReadCompareTest(const CLinearReadCompareTest& other) = default;

    // NODEVICE for a drive without a handle. Otherwise one pass; a FAIL is followed by one more
    // pass (after "RERUN_TEST") when the drive allows and confirms it; a PASS is replaced by the
    // drive's GetPASSResult(). A pass answers BADPARAMS for an unusable range, INTERNALERROR for
    // a drive without a sector size or buffers, FAIL when reads fail too often.
    quel5::TestResult Run() override;

private:
    quel5::TestResult DoTesting();
};

}  // namespace kivrlibdrive

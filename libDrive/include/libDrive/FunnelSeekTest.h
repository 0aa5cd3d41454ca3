// kivrlibdrive::CFunnelSeekTest: reads pairs of single sectors, one from the low end and one
// from the high end of the test range, moving both ends inward by the jump count after every
// pair. For start S, end E and jump J the sectors are S, E-1, S+J, E-1-J, S+2J, ... while the
// low sector lies below E: the seeks narrow to the middle of the range and widen again past it.
//
// Failed reads are counted (two per pair at most) and judged by the rules of DriveTest against
// the number of pairs. Progress ("READ_SECTOR_FUNNEL", timed at 1000 ms), the percentage, the
// time left and the stop request are handled at most about once a second. Events are raised from
// "libDrive/FunnelSeekTest". Not re-entrant: one funnel seek test at a time per process.
#pragma once

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CFunnelSeekTest : public DriveTest {
public:
    // `testedDrive` is not owned and must outlive the test.
    explicit CFunnelSeekTest(Drive& testedDrive);
    CFunnelSeekTest(const CFunnelSeekTest& other) = default;

    // NODEVICE for a drive without a handle. Otherwise one pass; a FAIL is followed by one more
    // pass (after "RERUN_TEST") when the drive allows and confirms it; a PASS is replaced by the
    // drive's GetPASSResult(). A pass answers BADPARAMS for an unusable range, INTERNALERROR when
    // the drive cannot be read at all, USERABORTED after a stop request.
    quel5::TestResult Run() override;

private:
    quel5::TestResult DoTesting();
};

}  // namespace kivrlibdrive

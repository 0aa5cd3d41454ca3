// kivrlibdrive::CRandomSeekTest: makes the heads seek to sectors drawn at random from the test
// range and reads one sector at each. The number of seeks ("NumberOfSeeks"), not the size of
// the range, sets the length of the test.
//
// Sectors are drawn from [start, end] with both ends included, so an end of "MAX" may ask the
// drive for the sector one past its last; a drive answers such a read as a failed one. Failed
// reads are counted and judged by the rules of DriveTest against the number of seeks. Progress
// ("READ_SECTOR", timed at 1000 ms), the percentage of seeks done, the time left and the stop
// request are handled at most about once a second. Events are raised from
// "libDrive/RandomSeekTest". Not re-entrant: one random seek test at a time per process.
#pragma once

#include <cstdint>

#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CRandomSeekTest : public DriveTest {
public:
    // The smallest span sectors are drawn from.
    static constexpr uint64_t MINIMUM_RANGE = 1;

    // `testedDrive` is not owned and must outlive the test.
    explicit CRandomSeekTest(Drive& testedDrive);
    CRandomSeekTest(const CRandomSeekTest& other) = default;

    // NODEVICE for a drive without a handle. Otherwise one pass; a FAIL is followed by one more
    // pass (after "RERUN_TEST") when the drive allows and confirms it; a PASS is replaced by the
    // drive's GetPASSResult(). A pass answers BADPARAMS when the range is unusable or no number
    // of seeks was set, INTERNALERROR when the drive cannot be read at all or a draw fell
    // outside the range, USERABORTED after a stop request.
    quel5::TestResult Run() override;

private:
    quel5::TestResult DoTesting();

    uint64_t seeksOfRun;  // the number of seeks of the current run, the total for error shares
};

}  // namespace kivrlibdrive

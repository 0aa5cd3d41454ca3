// A step that takes longer than 32 bits of milliseconds (or a clock that went backwards) is a
// defect each read-only test writes to "DEFECT.GENERIC" in its own words, and the run goes on.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ReadOnlyTestSupport.h"
#include "libDrive/FunnelSeekTest.h"
#include "libDrive/LinearReadCompareTest.h"
#include "libDrive/RandomSeekTest.h"
#include "libDrive/SurfaceScanTest.h"

namespace {

using drivetests::ScriptedDrive;

class StepTimeOverflow : public drivetests::DriveTestFixture {
protected:
    quel5::DiagDevice device{L"sim:stall"};
};

template <typename Test>
quel5::TestResult runTest(kivrlibdrive::Drive& drive) {
    Test test(drive);
    return test.Run();
}

TEST_F(StepTimeOverflow, IsLoggedAsADefectInTheWordsOfEachTest) {
    const struct {
        const char* name;
        std::function<quel5::TestResult(kivrlibdrive::Drive&)> run;
        const char* text;
    } cases[] = {
        {"random seek", runTest<kivrlibdrive::CRandomSeekTest>,
         "elapsed time overflowed Uint32 or is negative."},
        {"funnel seek", runTest<kivrlibdrive::CFunnelSeekTest>,
         "elapsed time overflowed Uint32 or is negative."},
        {"surface scan", runTest<kivrlibdrive::CSurfaceScanTest>,
         "doTesting() elapsed time overflowed Uint32 or is negative."},
        {"read/compare", runTest<kivrlibdrive::CLinearReadCompareTest>,
         "elapsed time overflowed Uint32 or is negative."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        quel5::Registry::instance().clearAllParameters();
        clearLog();
        set("StartRange", "2");
        set("EndRange", "3");
        set("NumberOfSeeks", "1");
        sim::SimulatedDriveConfig config = drivetests::driveOf(100);
        config.optimalReadAmount = 1;
        ScriptedDrive drive(device, config);
        drive.stallEveryRead = true;

        // One step over one sector, longer than 2^32 ms.
        c.run(drive);

        EXPECT_EQ(logged("DEFECT.GENERIC", 4), std::vector<std::string>{c.text});
    }
}

}  // namespace

// The progress percentage of the read/write test. Its totals are fixed by the first report of
// the process, so this program holds this one test alone.
#include "ScriptedOptical.h"

namespace rwtest {
namespace {

class ProgressTest : public ReadWriteFixture {};

TEST_F(ProgressTest, ThePercentageStartsAfterTheEraseAndKeepsTheFirstTotals) {
    // Every transfer takes 600 ms, so progress is reported every second transfer.
    drive.faults["writeSectors"] = drive.faults["readSectors"] = [&] { clock.advance(600); };
    drive.mediaIs = {"CDRWDisc"};
    drive.empty = false;
    parameters.sectors = 10;
    parameters.blankOnly = parameters.eraseNonBlank = true;
    {
        OpenTest erasedFirst(drive, parameters, strings);
        EXPECT_EQ(erasedFirst.Run(), quel5::TestResult::PASS);
    }
    EXPECT_EQ(host.percents(), (std::vector<unsigned int>{46, 52, 58, 64, 70, 76, 82, 88, 94}));

    // A later test with two speeds and an erase after it still divides by the first totals.
    host.clear();
    parameters.blankOnly = parameters.eraseNonBlank = false;
    parameters.eraseAfter = true;
    drive.speeds = {0xFFFF, 1764};
    OpenTest later(drive, parameters, strings);
    EXPECT_EQ(later.Run(), quel5::TestResult::PASS);
    const auto percents = host.percents();
    ASSERT_FALSE(percents.empty());
    EXPECT_EQ(percents.front(), 10u);
    EXPECT_GT(percents.back(), 100u);
}

}  // namespace
}  // namespace rwtest

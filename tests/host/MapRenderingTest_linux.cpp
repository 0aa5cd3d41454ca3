// The surface map is a document standard tools read: xmllint parses it and librsvg renders it
// (each skipped where the tool is not installed).
#include <gtest/gtest.h>

#include "DrivediagRun.h"
#include "support/LoopDevice.h"
#include "support/ScopedVirtualClock.h"
#include "support/TempFile.h"

namespace {

TEST(MapRenderingTest, TheMapParsesAndRendersToPng) {
    const testsupport::ScopedVirtualClock clock;
    const testsupport::TempFile map("map", "");
    const hosttest::RunOutput run = hosttest::runDrivediag(
        {"run", "surface-scan", "--device", "sim:1GiB,bad=500000+3000,slow=1572864+524288:40",
         "--set", "SectorPercentToTest=100", "--map", map.text()});
    ASSERT_EQ(run.exitCode, 1) << run.err;
    if (!testsupport::succeeds("command -v xmllint") &&
        !testsupport::succeeds("command -v rsvg-convert"))
        GTEST_SKIP() << "neither xmllint nor rsvg-convert is installed";
    if (testsupport::succeeds("command -v xmllint")) {
        EXPECT_TRUE(testsupport::succeeds("xmllint --noout " + map.text()));
    }
    if (testsupport::succeeds("command -v rsvg-convert")) {
        const testsupport::TempFile png("map-png", "");
        EXPECT_TRUE(testsupport::succeeds("rsvg-convert -o " + png.text() + " " + map.text()));
        EXPECT_EQ(png.contents().substr(1, 3), "PNG");
    }
}

}  // namespace

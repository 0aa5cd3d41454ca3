// A drivediag built without libpng refuses --map FILE.png before the test runs, naming the
// option, rather than writing SVG under a .png name.
#include <gtest/gtest.h>

#include <filesystem>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "support/ScopedVirtualClock.h"
#include "support/TempFile.h"

namespace {

TEST(PngMapRefusalTest, APngNameIsRefusedBeforeTheTestRuns) {
    const testsupport::ScopedVirtualClock clock;
    const testsupport::TempDirectory folder("png-map");
    for (const char* name : {"map.png", "MAP.Png"}) {
        SCOPED_TRACE(name);
        const std::filesystem::path file = folder.path() / name;
        const hosttest::RunOutput run =
            hosttest::runDrivediag({"run", "linear-seek", "--device", "sim:1MiB", "--set",
                                    "NumberOfSeeks=16", "--map", file.string()});
        EXPECT_EQ(run.exitCode, host::kExitUsage);
        EXPECT_NE(run.err.find("--map " + file.string() +
                               ": this drivediag was built without "
                               "libpng"),
                  std::string::npos)
            << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

}  // namespace

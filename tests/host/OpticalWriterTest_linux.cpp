// The read-write test on this machine's own writer, /dev/sr0, when it has one with a writable
// disc in it; skipped otherwise. It overwrites that disc.
#include <gtest/gtest.h>

#include <filesystem>

#include "DrivediagRun.h"
#include "optical/CurrentProfile.h"
#include "optical/OpticalMedia.h"

namespace {

TEST(OpticalWriterTest, TheTestPassesOnTheMachinesWriter) {
    constexpr const char* kWriter = "/dev/sr0";
    if (!std::filesystem::exists(kWriter)) GTEST_SKIP() << "no optical drive at " << kWriter;
    const host::OpticalMedium* medium = host::mediumOfProfile(host::currentProfileOf(kWriter));
    if (medium == nullptr || !medium->writable) GTEST_SKIP() << "no writable disc in " << kWriter;
    const hosttest::RunOutput output = hosttest::runDrivediag(
        {"run", "read-write", "--device", kWriter, "--destructive", "--sectors", "64"});
    EXPECT_EQ(output.exitCode, 0) << output.out << output.err;
    EXPECT_NE(output.lineWith({"Medium:", medium->name}), "");
}

}  // namespace

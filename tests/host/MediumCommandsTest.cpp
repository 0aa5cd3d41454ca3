// The checksum test's settings and medium, and make-checksum-file with a round trip through the
// checksum test.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "DrivediagRun.h"
#include "checksum/ChecksumFileMaker.h"
#include "checksum/ChecksumSetup.h"
#include "cli/ExitCodes.h"
#include "support/TempFile.h"

namespace {

namespace fs = std::filesystem;
using hosttest::runDrivediag;

std::string utf8(const fs::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

// A directory standing for a medium's mount point, removed at the end of the test.
class MediumDirectory {
public:
    std::string file(const std::string& name) const { return utf8(directory_.path() / name); }
    std::string root() const { return utf8(directory_.path()); }
    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(directory_.path() / name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const {
        return testsupport::fileContents(directory_.path() / name);
    }

private:
    testsupport::TempDirectory directory_{"medium"};
};

TEST(MediumSettings, KeysBecomeTheChecksumParameters) {
    const std::string digest = "900150983CD24FB0D6963F7D28E17F72";
    const struct {
        const char* name;
        host::ParameterValues sets;
        host::DriveMaps maps;
        bool answersYes;
        std::string error;  // part of the reason; empty when accepted
    } cases[] = {
        {"defaults", {{"DriveLetter", "e:"}}, {{"E", "/media/usb"}}, false, ""},
        {"every key",
         {{"DriveLetter", "F"},
          {"ChecksumFile", "a.bin"},
          {"FallbackFile", "b.bin"},
          {"ExpectedChecksum", digest},
          {"MaxMediaPrompts", "7"},
          {"MediaName", "CD 2"},
          {"FailIfNotFound", "yes"},
          {"MaxErrors", "3"}},
         {{"f", "/mnt/cd"}},
         false,
         ""},
        // clang-format off
        {"no drive letter", {}, {{"E", "/x"}}, false, "DriveLetter=E"},
        {"two letters", {{"DriveLetter", "EF"}}, {}, false, "expected a drive letter"},
        {"short digest", {{"DriveLetter", "E"}, {"ExpectedChecksum", "abc"}}, {{"E", "/x"}}, false, "32 hexadecimal"},
        {"prompts not a count", {{"DriveLetter", "E"}, {"MaxMediaPrompts", "-1"}}, {{"E", "/x"}}, false, "a count"},
        {"endless prompts answered by themselves", {{"DriveLetter", "E"}, {"MaxMediaPrompts", "0"}}, {{"E", "/x"}}, true, "forever"},
        {"a letter mapped twice", {{"DriveLetter", "E"}}, {{"E", "/x"}, {"e", "/y"}}, false, "twice"},
        {"a map without a directory", {{"DriveLetter", "E"}}, {{"E", ""}}, false, "LETTER=DIRECTORY"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        host::ParameterValues sets = c.sets;
        std::string error;
        const auto settings = host::takeMediumSettings(sets, c.maps, c.answersYes, &error);
        if (!c.error.empty()) {
            EXPECT_FALSE(settings);
            EXPECT_NE(error.find(c.error), std::string::npos) << error;
            continue;
        }
        ASSERT_TRUE(settings) << error;
        EXPECT_TRUE(settings->directory == "/media/usb" || settings->directory == "/mnt/cd");
        for (const auto& [key, value] : sets) EXPECT_FALSE(host::isMediumKey(key)) << key;
    }

    host::ParameterValues sets = cases[1].sets;
    std::string error;
    const auto every = host::takeMediumSettings(sets, cases[1].maps, false, &error);
    ASSERT_TRUE(every);
    EXPECT_EQ(every->driveLetter, 'F');
    EXPECT_EQ(every->parameters.checksumFileName.toUtf8(), "a.bin");
    EXPECT_EQ(every->parameters.fallbackFileName.toUtf8(), "b.bin");
    EXPECT_EQ(std::string(every->parameters.expectedChecksum.data(),
                          every->parameters.expectedChecksum.data() + 32),
              "900150983cd24fb0d6963f7d28e17f72")
        << "the digest KIVMD5 writes is lower case";
    EXPECT_EQ(every->parameters.maxMediaPrompts, 7u);
    EXPECT_EQ(every->parameters.mediaName.toUtf8(), "CD 2");
    EXPECT_TRUE(every->parameters.failIfNotFound);
    EXPECT_EQ(sets, (host::ParameterValues{{"MaxErrors", "3"}})) << "library keys stay";
}

TEST(MediumSettings, AnUnmappedLetterIsARootOnlyOnWindows) {
    host::ParameterValues sets = {{"DriveLetter", "E"}};
    std::string error;
    const auto settings = host::takeMediumSettings(sets, {}, false, &error);
    EXPECT_EQ(settings.has_value(), host::driveLettersAreRoots()) << error;
}

TEST(MakeChecksumFile, TheFileItWritesPassesTheChecksumTest) {
    const struct {
        const char* name;
        std::string data;
        std::string noteAt;  // "" when the digest covers all data
    } cases[] = {
        {"text", "hello medium", ""},
        {"nothing", "", ""},
        {"a zero byte", std::string("abc\0def", 7), "offset 3"},
        {"several chunks", std::string(10000, 'x'), ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MediumDirectory medium;
        medium.write("data", c.data);
        const auto made =
            runDrivediag({"make-checksum-file", medium.file("data"), medium.file("CHECKSUM.BIN")});
        ASSERT_EQ(made.exitCode, host::exitCodeFor(quel5::TestResult::PASS)) << made.err;
        EXPECT_EQ(made.out.find("Note:") != std::string::npos, !c.noteAt.empty());
        if (!c.noteAt.empty()) {
            EXPECT_NE(made.out.find(c.noteAt), std::string::npos);
        }
        const std::string written = medium.read("CHECKSUM.BIN");
        ASSERT_EQ(written.size(), c.data.size() + 16);
        EXPECT_EQ(written.substr(0, c.data.size()), c.data);

        const std::vector<std::string> run = {"run", "checksum", "--drive-letter",
                                              "E",   "--map",    "E=" + medium.root()};
        EXPECT_EQ(runDrivediag(run).exitCode, host::exitCodeFor(quel5::TestResult::PASS))
            << "the file as written passes";
        if (c.data.empty()) continue;
        std::string changed = written;
        changed[0] = static_cast<char>(changed[0] ^ 0x20);
        medium.write("CHECKSUM.BIN", changed);
        const auto failed = runDrivediag(run);
        EXPECT_EQ(failed.exitCode, host::exitCodeFor(quel5::TestResult::FAIL));
        EXPECT_EQ(failed.countLinesWith("ERROR: The computed checksum does not match"), 1u);
    }

    host::ChecksumFileMade made;
    const auto abc = host::checksumFileContents("abc", &made);
    ASSERT_TRUE(abc);
    EXPECT_EQ(abc->substr(3),
              std::string("\x90\x01\x50\x98\x3c\xd2\x4f\xb0\xd6\x96\x3f\x7d\x28\xe1\x7f\x72", 16))
        << "the trailer is the binary MD5 of the data";
    EXPECT_EQ(made.digest, "900150983cd24fb0d6963f7d28e17f72");
}

TEST(MakeChecksumFile, FilesThatCannotBeUsedAreReported) {
    const MediumDirectory medium;
    const struct {
        std::vector<std::string> args;
        int exitCode;
    } cases[] = {
        {{"make-checksum-file", medium.file("missing"), medium.file("out")}, host::kExitNoDevice},
        {{"make-checksum-file", medium.file("missing")}, host::kExitUsage},
        {{"make-checksum-file", medium.root(), medium.file("no-such-dir/out")},
         host::kExitNoDevice},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.args));
        EXPECT_EQ(runDrivediag(c.args).exitCode, c.exitCode);
    }
}

TEST(ChecksumRun, AMissingMediumIsAskedForThroughTheHost) {
    const MediumDirectory medium;
    const std::string map = "E=" + medium.root();
    const struct {
        const char* name;
        std::vector<std::string> extra;
        int exitCode;
        std::size_t prompts;
    } cases[] = {
        {"asked twice", {"--yes", "--prompts", "2", "--media-name", "Diag CD"}, 11, 2},
        {"failing when not found",
         {"--yes", "--set", "MaxMediaPrompts=1", "--fail-if-not-found"},
         1,
         1},
        {"the person cancels", {"--no"}, 4, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> args = {"run", "checksum", "--drive-letter", "E", "--map", map};
        args.insert(args.end(), c.extra.begin(), c.extra.end());
        const hosttest::RunOutput output = runDrivediag(args);
        EXPECT_EQ(output.exitCode, c.exitCode) << output.out << output.err;
        EXPECT_EQ(output.countLinesWith("PROMPT: Insert the test medium"), c.prompts);
    }
    medium.write("FALLBACK.BIN", "abc");
    const auto fallback = runDrivediag({"run", "checksum", "--drive-letter", "E", "--map", map,
                                        "--expected", "900150983cd24fb0d6963f7d28e17f72"});
    EXPECT_EQ(fallback.exitCode, host::exitCodeFor(quel5::TestResult::PASS)) << fallback.out;
}

}  // namespace

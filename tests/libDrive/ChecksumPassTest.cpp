// CChecksumTest with real files in a temporary directory standing for the medium's root: the
// checksum file and its trailer, the fallback file, prompts for the medium, and stops.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "DriveTestSupport.h"
#include "kiv/KIVMD5.h"
#include "libDrive/ChecksumTest.h"
#include "support/TempFile.h"

namespace {

namespace fs = std::filesystem;
using quel5::TestResult;

const char* const kEmptyDigest = "d41d8cd98f00b204e9800998ecf8427e";  // no data
const char* const kAbcDigest = "900150983cd24fb0d6963f7d28e17f72";    // "abc"

// The 16 bytes of a digest given as 32 hexadecimal characters.
std::string rawDigest(const std::string& hex) {
    std::string raw;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        raw.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return raw;
}

std::string digestOf(const std::string& text) {
    kiv::CString digest;
    EXPECT_TRUE(KIVMD5::calculateMD5Hash(kiv::CString(text), digest));
    return digest.str();
}

// `data` followed by the binary digest of its text.
std::string checksumFile(const std::string& data) { return data + rawDigest(digestOf(data)); }

// Characters that hold no zero byte, `count` of them.
std::string letters(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text.push_back(static_cast<char>('a' + i % 26));
    return text;
}

// A drive whose medium is a directory: its device path is "\\.\" followed by the directory. It
// answers the prompts for the medium from a script (then `laterAnswer`) and may run an action
// at each prompt, as a person inserting a medium would.
class MediumDrive : public sim::SimulatedDrive {
public:
    MediumDrive(const quel5::DiagDevice& diagDevice)
        : sim::SimulatedDrive(diagDevice, drivetests::driveOf(100)) {
        switches().needsMediaCheck = true;
    }

    std::vector<TestResult> answers;
    TestResult laterAnswer = TestResult::PASS;
    std::function<void(unsigned prompt)> onPrompt;
    unsigned prompts = 0;

    TestResult PromptUserOnUnqualifiedMedia() override {
        ++prompts;
        if (onPrompt) onPrompt(prompts);
        return prompts <= answers.size() ? answers[prompts - 1] : laterAnswer;
    }
};

class ChecksumPass : public drivetests::DriveTestFixture {
public:
    // The cases' arrangements put files on the medium.
    void write(const char* name, const std::string& bytes) {
        std::ofstream(root_ / name, std::ios::binary) << bytes;
    }
    void makeDirectory(const char* name) { fs::create_directories(root_ / name); }

protected:
    ChecksumPass() {
        device_.setText(L"DriverName", kiv::String(L"\\\\.\\") + kiv::String(root_.wstring()));
    }

    void clear() {
        for (const fs::directory_entry& entry : fs::directory_iterator(root_))
            fs::remove_all(entry.path());
        host.clear();
    }

    static kivrlibdrive::CChecksumTest::ChecksumParameters parameters(const std::string& expected,
                                                                      uint32_t maxPrompts = 1,
                                                                      bool failIfNotFound = false) {
        kivrlibdrive::CChecksumTest::ChecksumParameters p;
        p.checksumFileName = L"CHECKSUM.BIN";
        p.fallbackFileName = L"FALLBACK.BIN";
        for (const char c : expected) p.expectedChecksum.add(static_cast<unsigned char>(c));
        p.maxMediaPrompts = maxPrompts;
        p.mediaName = L"Test CD";
        p.failIfNotFound = failIfNotFound;
        return p;
    }

    testsupport::TempDirectory medium_{"checksum-medium"};
    const fs::path root_ = medium_.path();
    quel5::DiagDevice device_{L"sim:medium"};
};

struct FileCase {
    const char* name;
    std::string contents;
    TestResult result;
    std::vector<std::string> events;
    std::vector<unsigned> percents;
};

TEST_F(ChecksumPass, TheChecksumFileEndsWithTheDigestOfItsText) {
    const std::string hello = "hello world";
    std::string flipped = checksumFile(hello);
    flipped.back() = static_cast<char>(flipped.back() ^ 1);
    // clang-format off
    const FileCase cases[] = {
        {"good file", checksumFile(hello), TestResult::PASS, {}, {0, 100, 100}},
        {"changed data", "hellO world" + rawDigest(digestOf(hello)), TestResult::FAIL, {"CHECKSUM_TEST_FAIL:316"}, {0, 100, 100}},
        {"changed digest", flipped, TestResult::FAIL, {"CHECKSUM_TEST_FAIL:316"}, {0, 100, 100}},
        {"bytes after a zero byte are not covered", std::string("abc\0xyz", 7) + rawDigest(kAbcDigest), TestResult::PASS, {}, {0, 100, 100}},
        {"a 16-byte file covers nothing", rawDigest(kEmptyDigest), TestResult::PASS, {}, {0, 100, 100}},
        {"shorter than the digest", "0123456789", TestResult::CANNOTRUN, {"NO_DATA_FOUND_IN_FILE"}, {0, 100, 100}},
        {"empty", "", TestResult::CANNOTRUN, {"NO_DATA_FOUND_IN_FILE:243"}, {0}},
        {"three chunks", checksumFile(letters(10000)), TestResult::PASS, {}, {0, 40, 81, 100, 100}},
        {"exactly one chunk", checksumFile(letters(4080)), TestResult::PASS, {}, {0, 100, 100, 100}},
    };
    // clang-format on
    for (const FileCase& c : cases) {
        SCOPED_TRACE(c.name);
        clear();
        write("CHECKSUM.BIN", c.contents);
        MediumDrive drive(device_);
        kivrlibdrive::CChecksumTest test(drive, parameters(kEmptyDigest));

        EXPECT_EQ(test.Run(), c.result);

        std::vector<std::string> events = eventLines("libDrive/ChecksumTest");
        if (c.events == std::vector<std::string>{"NO_DATA_FOUND_IN_FILE"}) {
            ASSERT_EQ(events.size(), 1u);
            events[0] = events[0].substr(0, events[0].find(':'));  // a line of this library's own
        }
        EXPECT_EQ(events, c.events);
        EXPECT_EQ(host.percents(), c.percents);
        EXPECT_EQ(drive.prompts, 0u);
        EXPECT_EQ(drive.counters().lockTray, 1u);
        EXPECT_EQ(drive.counters().unlockTray, 1u);
    }
}

struct SearchCase {
    const char* name;
    std::function<void(ChecksumPass&, MediumDrive&)> arrange;
    std::string expected;  // the fallback file's digest as the caller gives it
    uint32_t maxPrompts;
    bool failIfNotFound;
    TestResult result;
    unsigned prompts;
    std::vector<std::string> events;
};

TEST_F(ChecksumPass, TheMediumIsAskedForUntilAFileIsFound) {
    // The fallback file is hashed whole, its zero byte included.
    const std::string fallback("fall\0back", 9);
    const std::string right = "0a547cc6c3cba5ba0f9a375c99503d88";
    const std::string upper = "0A547CC6C3CBA5BA0F9A375C99503D88";
    const auto both = [&fallback](ChecksumPass& t, MediumDrive&) {
        t.write("CHECKSUM.BIN", checksumFile("data"));
        t.write("FALLBACK.BIN", fallback);
    };
    const auto onlyFallback = [&fallback](ChecksumPass& t, MediumDrive&) {
        t.write("FALLBACK.BIN", fallback);
    };
    const auto nothing = [](ChecksumPass&, MediumDrive&) {};
    const auto answers = [](std::vector<TestResult> a) {
        return [a](ChecksumPass&, MediumDrive& d) { d.answers = a; };
    };
    const std::string notFound = "INCORRECT_MEDIA_INSERTED:144";
    // clang-format off
    const SearchCase cases[] = {
        {"the checksum file wins", both, "wrong", 1, false, TestResult::PASS, 0, {}},
        {"fallback file", onlyFallback, right, 1, false, TestResult::PASS, 0, {}},
        {"fallback file, other digest", onlyFallback, kEmptyDigest, 1, false, TestResult::FAIL, 0, {"CHECKSUM_TEST_FAIL:316"}},
        {"fallback digest in capitals", onlyFallback, upper, 1, false, TestResult::FAIL, 0, {"CHECKSUM_TEST_FAIL:316"}},
        {"nothing after three prompts", nothing, right, 3, false, TestResult::INCORRECTMEDIA, 3, {notFound}},
        {"nothing, failing", nothing, right, 2, true, TestResult::FAIL, 2, {notFound}},
        {"no media check, no search", [&both](ChecksumPass& t, MediumDrive& d) { both(t, d); d.switches().needsMediaCheck = false; },
         right, 3, false, TestResult::INCORRECTMEDIA, 0, {notFound}},
        {"media check fails", [](ChecksumPass&, MediumDrive& d) { d.switches().checkMediaResult = TestResult::NOMEDIA; },
         right, 3, false, TestResult::NOMEDIA, 0, {}},
        {"the person gives up", answers({TestResult::USERABORTED}), right, 3, false, TestResult::USERABORTED, 1, {}},
        {"no limit: asks until the answer changes", answers({TestResult::PASS, TestResult::PASS, TestResult::PASS, TestResult::PASS, TestResult::PASS, TestResult::PASS, TestResult::USERABORTED}),
         right, 0, false, TestResult::USERABORTED, 7, {}},
        {"inserted after two prompts",
         [](ChecksumPass& t, MediumDrive& d) { d.onPrompt = [&t](unsigned n) { if (n == 2) t.write("CHECKSUM.BIN", checksumFile("late")); }; },
         right, 5, false, TestResult::PASS, 2, {}},
        {"checksum file cannot be opened", [](ChecksumPass& t, MediumDrive&) { t.makeDirectory("CHECKSUM.BIN"); },
         right, 1, false, TestResult::FAIL, 0, {"FileOpenFail:155"}},
        {"fallback file cannot be read", [](ChecksumPass& t, MediumDrive&) { t.makeDirectory("FALLBACK.BIN"); },
         right, 1, false, TestResult::FAIL, 0, {"FileOpenFail:258"}},
        {"no handle", [](ChecksumPass&, MediumDrive& d) { d.switches().invalidHandle = true; },
         right, 1, false, TestResult::NODEVICE, 0, {"INVALID_DRIVE_HANDLE@libDrive/DriveTest"}},
        {"the drive judges the pass", [&both](ChecksumPass& t, MediumDrive& d) { both(t, d); d.switches().passResult = TestResult::WARN; },
         "wrong", 1, false, TestResult::WARN, 0, {}},
    };
    // clang-format on
    for (const SearchCase& c : cases) {
        SCOPED_TRACE(c.name);
        clear();
        MediumDrive drive(device_);
        c.arrange(*this, drive);
        kivrlibdrive::CChecksumTest test(drive,
                                         parameters(c.expected, c.maxPrompts, c.failIfNotFound));

        EXPECT_EQ(test.Run(), c.result);

        EXPECT_EQ(drive.prompts, c.prompts);
        EXPECT_EQ(eventLines("libDrive/ChecksumTest"), c.events);
        if (drive.counters().checkMedia > 0) {
            EXPECT_TRUE(drive.counters().lastCheckMediaFlag);
        }
        const unsigned trayLocks = c.result == TestResult::NODEVICE ? 0 : 1;
        EXPECT_EQ(drive.counters().lockTray, trayLocks);
        EXPECT_EQ(drive.counters().unlockTray, trayLocks);
    }
}

TEST_F(ChecksumPass, TheMissingMediumEventNamesTheMedium) {
    MediumDrive drive(device_);
    kivrlibdrive::CChecksumTest test(drive, parameters(kEmptyDigest, 1, true));

    EXPECT_EQ(test.Run(), TestResult::FAIL);

    EXPECT_EQ(
        host.eventSummaries(),
        std::vector<std::string>{"WARNING INCORRECT_MEDIA_INSERTED@libDrive/ChecksumTest"
                                 "{MediaName1=Test CD,MediaName2=TEST_MEDIA{MediaName=Test CD}}"});
    EXPECT_TRUE(
        wasLogged("libDrive.ChecksumTest", 4, "140 Checksum file not found on inserted media."));
}

TEST_F(ChecksumPass, AStopWhileReadingEndsTheTest) {
    const struct {
        unsigned pollsBeforeStop;
        TestResult result;
        std::vector<unsigned> percents;
    } cases[] = {
        {0, TestResult::USERABORTED, {0, 40, 100}},
        {1, TestResult::USERABORTED, {0, 40, 81, 100}},
        {3, TestResult::PASS, {0, 40, 81, 100, 100}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pollsBeforeStop);
        clear();
        write("CHECKSUM.BIN", checksumFile(letters(10000)));
        host.stopAfterPolls(c.pollsBeforeStop);
        MediumDrive drive(device_);
        kivrlibdrive::CChecksumTest test(drive, parameters(kEmptyDigest));

        EXPECT_EQ(test.Run(), c.result);

        EXPECT_EQ(host.percents(), c.percents);
        EXPECT_EQ(drive.counters().unlockTray, 1u);
    }
}

}  // namespace

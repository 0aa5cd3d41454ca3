#include "libDrive/ChecksumTest.h"

#include <algorithm>
#include <array>
#include <limits>

#include "ClassLog.h"
#include "PassReporting.h"
#include "PassRules.h"
#include "PassTiming.h"
#include "kiv/FileSystem.h"
#include "kiv/KIVMD5.h"
#include "kiv/Log.h"
#include "kiv/Stream.h"
#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/ChecksumTest";

constexpr std::size_t kChunkBytes = 4096;
constexpr unsigned int kTrailerBytes = 16;
// Per-chunk durations kept for the time-left estimate.
constexpr std::size_t kTimedChunks = 10;
// The device path begins with "\\.\"; the medium's root is what follows.
constexpr std::size_t kDevicePathPrefix = 4;

// Where the published event and log lines of this test lie.
enum EventLine {
    kNotFoundLine = 144,
    kOpenFailLine = 155,
    kTimeLeftLogLine = 216,
    kNoDataLine = 243,
    kFallbackHashLine = 258,
    kFileSizeLine = 300,
    kMismatchLine = 316,
};

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.ChecksumTest");
}

void log(kiv::LogPriority priority, const kiv::String& text) {
    logger()->log(static_cast<int>(priority), text);
}

// The 16 digest bytes as KIVMD5 writes a digest: lower-case hexadecimal, first byte first, with
// a terminating zero byte.
kiv::Array<unsigned char> digestText(const unsigned char* digest) {
    static const char kHex[] = "0123456789abcdef";
    kiv::Array<unsigned char> text;
    for (unsigned int i = 0; i < kTrailerBytes; ++i) {
        text.add(static_cast<unsigned char>(kHex[digest[i] >> 4]));
        text.add(static_cast<unsigned char>(kHex[digest[i] & 0x0F]));
    }
    text.add(0);
    return text;
}

unsigned int percentOf(uint64_t part, uint64_t whole) {
    if (whole == 0 || part >= whole) {
        return 100;
    }
    return static_cast<unsigned int>(static_cast<double>(part) * 100.0 /
                                     static_cast<double>(whole));
}

}  // namespace

CChecksumTest::CChecksumTest(Drive& testedDrive, const ChecksumParameters& parameters)
    : DriveTest(testedDrive),
      checksumFileName(parameters.checksumFileName),
      fallbackFileName(parameters.fallbackFileName),
      expectedChecksum(parameters.expectedChecksum),
      maxMediaPrompts(parameters.maxMediaPrompts == 0 ? std::numeric_limits<uint32_t>::max()
                                                      : parameters.maxMediaPrompts),
      mediaName(parameters.mediaName),
      failIfNotFound(parameters.failIfNotFound) {
    // This test reads no range.
    rangeFlagA = false;
}

quel5::TestResult CChecksumTest::Run() {
    const ScopedTrace trace(logger(), L"CChecksumTest::Run", kSource, __LINE__);
    const quel5::TestResult checked = DriveTest::Run();
    if (checked != quel5::TestResult::PASS) {
        return checked;
    }
    TrayHold tray(drive);
    quel5::TestResult result = CalculateChecksum();
    if (result == quel5::TestResult::PASS) {
        result = drive.GetPASSResult();
    }
    tray.Release();
    return result;
}

quel5::TestResult CChecksumTest::CalculateChecksum() {
    quel5::DiagModule::percentDone(0);
    const kiv::String& devicePath = drive.GetDriveLetter();
    const kiv::String root = devicePath.substring(std::min(kDevicePathPrefix, devicePath.length()));
    // A file is looked for only by a name, on a medium that has a root.
    const auto onMedium = [&root](const kiv::String& name, kiv::String& path) {
        if (root.isEmpty() || name.isEmpty()) {
            return false;
        }
        path = kiv::FileSystem::joinPath(root, name);
        return kiv::FileSystem::exists(path);
    };
    if (!drive.NeedsMediaCheck()) {
        return ReportNotFound();
    }
    for (uint32_t prompts = 0;;) {
        const quel5::TestResult media = drive.CheckMedia(true);
        if (media != quel5::TestResult::PASS) {
            return media;
        }
        kiv::String path;
        if (onMedium(checksumFileName, path)) {
            filePath = path;
            return CheckChecksumFile();
        }
        if (onMedium(fallbackFileName, path)) {
            filePath = path;
            return CheckFallbackFile();
        }
        const quel5::TestResult prompted = drive.PromptUserOnUnqualifiedMedia();
        if (prompted != quel5::TestResult::PASS) {
            return prompted;
        }
        if (++prompts >= maxMediaPrompts) {
            return ReportNotFound();
        }
    }
}

quel5::TestResult CChecksumTest::CheckChecksumFile() {
    log(kiv::LogPriority::Detail, L"149 Using checksum file...");
    kiv::IFStream stream;
    if (!stream.openFile(filePath)) {
        quel5::DiagModule::error(LibDriveStrings::g_errorFileOpenFail, kSource, kOpenFailLine);
        log(kiv::LogPriority::Warning, L"156 Opening the checksum file failed.");
        return quel5::TestResult::FAIL;
    }
    unsigned int size = 0;
    const quel5::TestResult sized = GetCheckSumFileSize(size);
    if (sized != quel5::TestResult::PASS) {
        return sized;
    }

    PassTiming timing(L"elapsed time overflowed Uint32 or is negative.", kTimedChunks);
    timing.Start();
    kiv::Array<unsigned char> contents;
    std::array<unsigned char, kChunkBytes> chunk{};
    unsigned int bytesRead = 0;
    for (bool first = true;; first = false) {
        const std::size_t length = stream.read(chunk.data(), chunk.size());
        if (first && length == 0) {
            log(kiv::LogPriority::Warning, L"242 No data found in the input checksum file.");
            quel5::DiagModule::warning(LibDriveStrings::g_warnNoDataFoundInChecksumFile, kSource,
                                       kNoDataLine);
            return quel5::TestResult::CANNOTRUN;
        }
        for (std::size_t i = 0; i < length; ++i) {
            contents.add(chunk[i]);
        }
        bytesRead += static_cast<unsigned int>(length);
        quel5::DiagModule::percentDone(percentOf(bytesRead, size));
        if (quel5::DiagModule::checkForStop()) {
            quel5::DiagModule::percentDone(100);
            return quel5::TestResult::USERABORTED;
        }
        if (timing.IsReportDue()) {
            // A file that grew since its size was taken has nothing left, not a wrapped count.
            const unsigned int bytesLeft = size > bytesRead ? size - bytesRead : 0;
            ReportTimeLeft(drive, logger(), kTimeLeftLogLine, timing, bytesLeft);
        }
        timing.EndStep();
        if (length < kChunkBytes) {
            break;
        }
    }
    if (!stream.close()) {
        log(kiv::LogPriority::Warning, L"248 Error closing checksum file.");
    }
    const quel5::TestResult result = CompareChecksums(contents, bytesRead);
    quel5::DiagModule::percentDone(100);
    return result;
}

quel5::TestResult CChecksumTest::CheckFallbackFile() {
    log(kiv::LogPriority::Detail, L"254 Using fallback file...");
    kiv::CString digest;
    if (!KIVMD5::calculateMD5HashFile(filePath, digest)) {
        quel5::DiagModule::error(LibDriveStrings::g_errorFileOpenFail, kSource, kFallbackHashLine);
        log(kiv::LogPriority::Warning, L"259 Opening the checksum file failed.");
        return quel5::TestResult::FAIL;
    }
    expectedChecksum.add(0);
    const quel5::TestResult result = CompareChecksums(expectedChecksum, digest);
    quel5::DiagModule::percentDone(100);
    return result;
}

quel5::TestResult CChecksumTest::ReportNotFound() {
    log(kiv::LogPriority::Warning, L"140 Checksum file not found on inserted media.");
    LibDriveStrings::g_testMedia->setVariable(L"MediaName", quel5::Value(mediaName));
    quel5::Event* event = LibDriveStrings::g_EventIncorrectMediaInserted;
    event->setVariable(L"MediaName1", quel5::Value(mediaName));
    event->setVariable(L"MediaName2",
                       quel5::Value(LibDriveStrings::g_testMedia->localizedString()));
    quel5::DiagModule::warning(event, kSource, kNotFoundLine);
    return failIfNotFound ? quel5::TestResult::FAIL : quel5::TestResult::INCORRECTMEDIA;
}

quel5::TestResult CChecksumTest::CompareChecksums(kiv::Array<unsigned char>& contents,
                                                  unsigned int size) {
    const std::size_t length = std::min<std::size_t>(size, contents.size());
    if (length < kTrailerBytes) {
        // Nothing to compare with: a file this short cannot end with a digest.
        log(kiv::LogPriority::Warning, kiv::String::fromNumber(__LINE__) +
                                           L" The checksum file is shorter than its " +
                                           L"16-byte checksum.");
        quel5::DiagModule::warning(LibDriveStrings::g_warnNoDataFoundInChecksumFile, kSource,
                                   __LINE__);
        return quel5::TestResult::CANNOTRUN;
    }
    const std::size_t dataBytes = length - kTrailerBytes;
    kiv::Array<unsigned char> expected = digestText(contents.data() + dataBytes);
    contents.resize(dataBytes);
    contents.add(0);
    // Hashed as text: the digest covers the bytes before the first zero byte.
    kiv::CString digest;
    KIVMD5::calculateMD5Hash(
        kiv::CString(reinterpret_cast<const char*>(contents.data()), contents.size()), digest);
    return CompareChecksums(expected, digest);
}

quel5::TestResult CChecksumTest::CompareChecksums(kiv::Array<unsigned char>& expected,
                                                  const kiv::CString& calculated) {
    const kiv::CString expectedText(reinterpret_cast<const char*>(expected.data()),
                                    expected.size());
    if (calculated.directMatch(expectedText)) {
        return quel5::TestResult::PASS;
    }
    log(kiv::LogPriority::Warning,
        L"315 Calculated checksum value does not match with the known checksum value in the "
        L"input file");
    quel5::DiagModule::error(LibDriveStrings::g_errorChecksumFail, kSource, kMismatchLine);
    return quel5::TestResult::FAIL;
}

quel5::TestResult CChecksumTest::GetCheckSumFileSize(unsigned int& size) {
    uint64_t bytes = 0;
    if (!kiv::FileSystem::getFileSize(filePath, bytes) ||
        bytes > std::numeric_limits<unsigned int>::max()) {
        log(kiv::LogPriority::Warning, L"299 Cannot obtain file size.");
        quel5::DiagModule::warning(LibDriveStrings::g_errorRetrievingFileSize, kSource,
                                   kFileSizeLine);
        return quel5::TestResult::CANNOTRUN;
    }
    size = static_cast<unsigned int>(bytes);
    return quel5::TestResult::PASS;
}

}  // namespace kivrlibdrive

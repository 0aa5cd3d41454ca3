// kivrlibdrive::CChecksumTest: verifies a prepared test medium by the MD5 digest of a file on it.
//
// The test looks on the medium's root (the drive's device path without its four-character
// "\\.\" prefix: "E:" on Windows; a host elsewhere may give "\\.\" followed by a mount
// directory) for two files, asking for the medium through the drive until one is found:
//  - the checksum file: data followed by a 16-byte trailer, the MD5 digest in binary of the
//    data's text (its bytes up to the first zero byte). The file passes when that digest, as 32
//    lower-case hexadecimal characters, equals the digest computed here.
//  - otherwise the fallback file: it passes when its whole digest, as 32 lower-case hexadecimal
//    characters, equals the text in ChecksumParameters::expectedChecksum.
// Events are raised from "libDrive/ChecksumTest".
#pragma once

#include <cstdint>

#include "kiv/Array.h"
#include "kiv/CString.h"
#include "kiv/String.h"
#include "libDrive/Drive.h"
#include "libDrive/DriveTest.h"
#include "libDrive/Export.h"
#include "quel5/QuelString.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

class LIBDRIVE_API CChecksumTest : public DriveTest {
public:
    struct ChecksumParameters {
        kiv::String checksumFileName;  // relative to the medium's root
        kiv::String fallbackFileName;  // relative to the medium's root
        // The fallback file's digest as text (32 lower-case hexadecimal characters); a zero
        // byte, when present, ends the text.
        kiv::Array<unsigned char> expectedChecksum;
        // How often the medium is asked for before the test gives up; 0: no limit.
        uint32_t maxMediaPrompts = 0;
        QuelString mediaName;  // the medium's name as the missing-file event shows it
        // When no file is found: FAIL if true, INCORRECTMEDIA if false.
        bool failIfNotFound = false;
    };

    // `testedDrive` is not owned and must outlive the test; `parameters` is copied.
    CChecksumTest(Drive& testedDrive, const ChecksumParameters& parameters);
    CChecksumTest(const CChecksumTest& other) = default;

    // NODEVICE for a drive without a handle. Otherwise, with the tray locked: PASS (replaced by
    // the drive's GetPASSResult()) when the digest matches; FAIL when it does not
    // ("CHECKSUM_TEST_FAIL") or a file cannot be opened ("FileOpenFail"); CANNOTRUN for a
    // checksum file that is empty ("NO_DATA_FOUND_IN_FILE"), shorter than its trailer or of
    // unknown size ("ERROR_RETRIEVING_FILE_SIZE"); USERABORTED after a stop request while
    // reading; FAIL or INCORRECTMEDIA (per failIfNotFound) when no file was found
    // ("INCORRECT_MEDIA_INSERTED"); whatever the drive's media check or prompt answers when that
    // is not PASS. There is no re-run.
    quel5::TestResult Run() override;

protected:
    // Finds the medium and its file, and checks the file.
    quel5::TestResult CalculateChecksum();
    // Checks the first `size` bytes of `contents`, the checksum file's data and trailer. Leaves
    // the data, followed by a zero byte, in `contents`. CANNOTRUN when fewer than 16 bytes.
    quel5::TestResult CompareChecksums(kiv::Array<unsigned char>& contents, unsigned int size);
    // PASS when `calculated` equals the text in `expected` (up to its first zero byte), else
    // FAIL after "CHECKSUM_TEST_FAIL".
    quel5::TestResult CompareChecksums(kiv::Array<unsigned char>& expected,
                                       const kiv::CString& calculated);
    // The size of the file at filePath in bytes; CANNOTRUN ("ERROR_RETRIEVING_FILE_SIZE") when it
    // is unknown or does not fit 32 bits.
    quel5::TestResult GetCheckSumFileSize(unsigned int& size);

private:
    quel5::TestResult CheckChecksumFile();
    quel5::TestResult CheckFallbackFile();
    quel5::TestResult ReportNotFound();

    kiv::String filePath;
    kiv::String checksumFileName;
    kiv::String fallbackFileName;
    kiv::Array<unsigned char> expectedChecksum;
    uint32_t maxMediaPrompts;
    QuelString mediaName;
    bool failIfNotFound;
};

}  // namespace kivrlibdrive

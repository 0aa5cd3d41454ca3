// The checksum test's settings on drivediag's command line. They are not library parameters:
// they become the test's ChecksumParameters and the medium's drive.
//
// Keys, given with --set KEY=VALUE or the options named in brackets:
//   ChecksumFile (--checksum-file)   name of the checksum file on the medium  [CHECKSUM.BIN]
//   FallbackFile (--fallback-file)   name of the fallback file                [FALLBACK.BIN]
//   ExpectedChecksum (--expected)    the fallback file's MD5, 32 hex digits   [none]
//   MaxMediaPrompts (--prompts)      how often to ask for the medium, 0: no limit  [3]
//   MediaName (--media-name)         the medium's name in prompts and events  [test medium]
//   FailIfNotFound (--fail-if-not-found)  FAIL rather than INCORRECTMEDIA without a file [false]
//   DriveLetter (--drive-letter)     the medium's drive letter                [required]
// --map LETTER=DIRECTORY says where a drive letter's medium is mounted; it is needed wherever
// drive letters are not paths (everywhere but Windows).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/DriveOpening.h"
#include "cli/ParameterSetup.h"
#include "libDrive/ChecksumTest.h"

namespace host {

struct MediumSettings {
    kivrlibdrive::CChecksumTest::ChecksumParameters parameters;
    char driveLetter = 0;   // upper case
    std::string directory;  // where the medium is mounted; empty when the letter is its root
};

using DriveMaps = std::vector<std::pair<std::string, std::string>>;  // letter, directory

// True when the key belongs to the checksum test's settings.
bool isMediumKey(const std::string& key);

// Takes the settings' keys out of `sets` (the last value of a key counts) and combines them with
// `maps`. nullopt with a reason for a person in *error when a value does not fit, the drive letter
// is missing, or it has no root here. `answersYes` says the prompts are answered OK by
// themselves, so an unlimited number of them is refused.
std::optional<MediumSettings> takeMediumSettings(ParameterValues& sets, const DriveMaps& maps,
                                                 bool answersYes, std::string* error);

// The medium's device text ("medium:E") and the drive the checksum test runs on.
OpenResult openMedium(const MediumSettings& settings);

// True where a drive letter followed by a colon names the root of a medium (Windows).
bool driveLettersAreRoots();

}  // namespace host

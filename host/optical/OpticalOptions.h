// The read-write test's options on drivediag's command line and the settings they make. The
// command-line parser only collects them (isOpticalOption); opticalOptionsOf checks and reads
// them, so a bad value is refused before any device is opened.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

// Sectors a plain run writes and verifies at each speed: 16 MiB of 2048-byte sectors.
inline constexpr long long kDefaultOpticalSectors = 8192;

struct OpticalOptions {
    long long sectors = kDefaultOpticalSectors;  // --sectors N
    bool blankOnly = false;                      // --blank-only
    bool eraseAfter = false;                     // --erase-after (also when stopped)
    unsigned int eraseSeconds = 120;             // --erase-seconds N: expected blank/format time
    std::vector<std::string> approved;           // --approved ID,ID,...: pairs of IDs
    bool regex = false;                          // --regex: approved IDs are patterns
    bool qualifiedOnly = false;                  // --qualified-only
    bool rerunUnapproved = false;                // --rerun-unapproved
    std::optional<unsigned int> usageLimit;      // --usage-limit N
    bool failOnMediaProblems = false;            // --fail-on-media-problems
    unsigned int reruns = 1;                     // --reruns N: runs allowed, 0 = until one passes
    unsigned int mediaPrompts = 0;               // --media-prompts N: 0 = ask for no other disc
    bool eject = false;                          // --eject: eject the disc at the end
    std::string media;                           // --media LIST ("" = every writable kind)
    std::vector<uint16_t> profiles;              // the profiles of `media`
    std::string customer = "drivediag";          // --customer NAME
    std::string promptTitle = "drivediag read-write test";  // --prompt-title TEXT
};

// True when `name` ("--sectors") is one of the test's options; *takesValue says whether it
// takes a value.
bool isOpticalOption(const std::string& name, bool* takesValue);

// The options of `given` (name and value, "" for a flag, in command-line order), or nullopt
// with a reason naming the option in *error.
std::optional<OpticalOptions> opticalOptionsOf(
    const std::vector<std::pair<std::string, std::string>>& given, std::string* error);

// The lines `drivediag run --help` shows for the options.
const char* opticalOptionsUsage();
// What `drivediag tests` shows as the test's defaults: option and value.
std::vector<std::pair<std::string, std::string>> opticalDefaults();

}  // namespace host

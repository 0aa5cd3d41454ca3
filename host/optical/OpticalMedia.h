// The kinds of optical media drivediag names on its command line ("dvd+rw"), with the MMC
// profiles a drive reports for each and a name for a person ("DVD+RW").
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct OpticalMedium {
    const char* option;  // "dvd+rw"
    const char* name;    // "DVD+RW"
    std::vector<uint16_t> profiles;
    bool writable;
    bool rewritable;  // erased by blanking or formatting
};

// Every kind, CD first, the way `--media` and `emu:` take them.
std::span<const OpticalMedium> opticalMedia();
const OpticalMedium* mediumNamed(std::string_view option);
// The kind whose profiles include `profile`; nullptr for 0 (no disc) or a profile we do not know.
const OpticalMedium* mediumOfProfile(uint16_t profile);
// "DVD+RW (profile 0x001A)", "no disc", or "profile 0x00FF" for one we do not know.
std::string profileText(uint16_t profile);

// The profiles of a comma-separated list of kinds ("dvd+rw,bd-re"), or of every writable kind
// when `list` is empty; nullopt with the offending name in *error.
std::optional<std::vector<uint16_t>> profilesOfList(std::string_view list, std::string* error);

// "cd-r, cd-rw, ...": the names of the writable kinds, or of every kind.
std::string mediumOptions(bool writableOnly);

}  // namespace host

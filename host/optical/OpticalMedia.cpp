#include "optical/OpticalMedia.h"

#include <cstdio>

#include "cli/TextParts.h"

namespace host {
namespace {

const std::vector<OpticalMedium> kMedia = {
    {"cd-rom", "CD-ROM", {0x0008}, false, false},
    {"cd-r", "CD-R", {0x0009}, true, false},
    {"cd-rw", "CD-RW", {0x000A}, true, true},
    {"dvd-rom", "DVD-ROM", {0x0010}, false, false},
    {"dvd-r", "DVD-R", {0x0011}, true, false},
    // Sequential recording and restricted overwrite are one kind of disc to a person.
    {"dvd-rw", "DVD-RW", {0x0014, 0x0013}, true, true},
    {"dvd-r-dl", "DVD-R DL", {0x0015, 0x0016}, true, false},
    {"dvd+r", "DVD+R", {0x001B}, true, false},
    {"dvd+rw", "DVD+RW", {0x001A}, true, true},
    {"dvd+r-dl", "DVD+R DL", {0x002B}, true, false},
    {"dvd-ram", "DVD-RAM", {0x0012}, true, true},
    {"bd-rom", "BD-ROM", {0x0040}, false, false},
    {"bd-r", "BD-R", {0x0041, 0x0042}, true, false},
    {"bd-re", "BD-RE", {0x0043}, true, true},
    {"hd-dvd-rom", "HD DVD-ROM", {0x0050}, false, false},
    {"hd-dvd-r", "HD DVD-R", {0x0051}, true, false},
    {"hd-dvd-rw", "HD DVD-RW", {0x0053}, true, true},
    {"hd-dvd-ram", "HD DVD-RAM", {0x0052}, true, true},
};

std::string hex4(uint16_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "%04X", static_cast<unsigned>(value));
    return text;
}

}  // namespace

std::span<const OpticalMedium> opticalMedia() { return kMedia; }

const OpticalMedium* mediumNamed(std::string_view option) {
    for (const OpticalMedium& medium : kMedia) {
        if (option == medium.option) return &medium;
    }
    return nullptr;
}

const OpticalMedium* mediumOfProfile(uint16_t profile) {
    for (const OpticalMedium& medium : kMedia) {
        for (uint16_t own : medium.profiles) {
            if (own == profile) return &medium;
        }
    }
    return nullptr;
}

std::string profileText(uint16_t profile) {
    if (profile == 0) return "no disc";
    const OpticalMedium* medium = mediumOfProfile(profile);
    const std::string number = "profile 0x" + hex4(profile);
    return medium ? std::string(medium->name) + " (" + number + ")" : number;
}

std::optional<std::vector<uint16_t>> profilesOfList(std::string_view list, std::string* error) {
    std::vector<uint16_t> profiles;
    if (list.empty()) {
        for (const OpticalMedium& medium : kMedia) {
            if (medium.writable)
                profiles.insert(profiles.end(), medium.profiles.begin(), medium.profiles.end());
        }
        return profiles;
    }
    for (const std::string_view name : partsOf(list, ',')) {
        const OpticalMedium* medium = mediumNamed(name);
        if (medium == nullptr || !medium->writable) {
            *error = "--media: \"" + std::string(name) + "\" is not a writable kind of disc (" +
                     mediumOptions(true) + ")";
            return std::nullopt;
        }
        profiles.insert(profiles.end(), medium->profiles.begin(), medium->profiles.end());
    }
    return profiles;
}

std::string mediumOptions(bool writableOnly) {
    std::string names;
    for (const OpticalMedium& medium : kMedia) {
        if (writableOnly && !medium.writable) continue;
        names += (names.empty() ? "" : ", ") + std::string(medium.option);
    }
    return names;
}

}  // namespace host

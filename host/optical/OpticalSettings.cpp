#include "optical/OpticalSettings.h"

#include <algorithm>

#include "optical/OpticalMedia.h"

namespace host {
namespace {

QuelString quelText(const std::string& utf8) { return QuelString(kiv::String::fromUtf8(utf8)); }

// "DVD+RW or BD-RE", "writable disc" when every writable kind will do.
std::string mediaAskedFor(const OpticalOptions& options) {
    if (options.media.empty()) return "writable disc";
    std::string names;
    for (uint16_t profile : options.profiles) {
        const OpticalMedium* medium = mediumOfProfile(profile);
        const std::string name = medium ? medium->name : "";
        if (name.empty() || names.find(name) != std::string::npos) continue;
        names += (names.empty() ? "" : " or ") + name;
    }
    return names;
}

}  // namespace

quel5::Value OpticalParameters::approvedMediaIds() {
    std::vector<kiv::String> ids;
    for (const std::string& id : options_.approved) ids.push_back(kiv::String::fromUtf8(id));
    return quel5::Value::stringArray(ids);
}

unsigned int OpticalParameters::mediaUsageLimitNumber() {
    return options_.usageLimit ? *options_.usageLimit
                               : WindowsOpticalDriveParameters::mediaUsageLimitNumber();
}

QuelString OpticalStrings::mediaName() {
    const uint16_t profile = drive_.currentProfile();
    const OpticalMedium* medium = mediumOfProfile(profile);
    const bool wanted = std::find(options_.profiles.begin(), options_.profiles.end(), profile) !=
                        options_.profiles.end();
    return quelText(medium != nullptr && wanted ? medium->name : mediaAskedFor(options_));
}

QuelString OpticalStrings::promptTitle() { return quelText(options_.promptTitle); }

QuelString OpticalStrings::customerName() { return quelText(options_.customer); }

}  // namespace host

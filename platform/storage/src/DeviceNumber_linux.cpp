#include "DeviceNumber.h"

#include <sys/sysmacros.h>

#include <fstream>
#include <sstream>

namespace libStorage::detail {

std::optional<dev_t> parseDeviceNumber(const std::string& text) {
    unsigned majorNumber = 0, minorNumber = 0;
    char colon = 0;
    std::istringstream in(text);
    if (!(in >> majorNumber >> colon >> minorNumber) || colon != ':') {
        return std::nullopt;
    }
    return makedev(majorNumber, minorNumber);
}

std::optional<dev_t> deviceNumberIn(const std::filesystem::path& devFile) {
    std::ifstream in(devFile);
    std::string text;
    if (!(in >> text)) return std::nullopt;
    return parseDeviceNumber(text);
}

}  // namespace libStorage::detail

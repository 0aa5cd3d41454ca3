#include "cli/SizeText.h"

#include <cmath>
#include <cstdio>

namespace host {

std::string binarySizeText(uint64_t bytes) {
    if (bytes < 1024) return std::to_string(bytes) + " B";
    static const char* const units[] = {"KiB", "MiB", "GiB", "TiB", "PiB"};
    double value = static_cast<double>(bytes) / 1024.0;
    std::size_t unit = 0;
    // Tenths are what is shown, so the choice is made on the rounded value.
    while (unit + 1 < std::size(units) && std::round(value * 10.0) >= 10240.0) {
        value /= 1024.0;
        ++unit;
    }
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.1f %s", value, units[unit]);
    return buffer;
}

}  // namespace host

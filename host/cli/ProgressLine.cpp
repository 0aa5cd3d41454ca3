#include "cli/ProgressLine.h"

#include <cstdio>

namespace host {
namespace {

constexpr unsigned int kBarCells = 20;

}  // namespace

std::string formatDuration(unsigned int seconds) {
    const unsigned int hours = seconds / 3600;
    const unsigned int minutes = seconds / 60 % 60;
    const unsigned int rest = seconds % 60;
    char buffer[32];
    if (hours > 0) {
        std::snprintf(buffer, sizeof buffer, "%u:%02u:%02u", hours, minutes, rest);
    } else {
        std::snprintf(buffer, sizeof buffer, "%u:%02u", minutes, rest);
    }
    return buffer;
}

std::string progressLine(unsigned int percent, const std::string& text,
                         std::optional<unsigned int> secondsLeft, std::size_t width) {
    if (percent > 100) percent = 100;
    const unsigned int filled = percent * kBarCells / 100;
    std::string line = "[" + std::string(filled, '#') + std::string(kBarCells - filled, '.') + "]";
    char figure[8];
    std::snprintf(figure, sizeof figure, " %3u%%", percent);
    line += figure;
    if (!text.empty()) line += "  " + text;
    if (secondsLeft) line += "  " + formatDuration(*secondsLeft) + " left";
    if (line.size() > width) {
        line.resize(width);
        // Never leave half of a UTF-8 character at the end.
        while (!line.empty() && (static_cast<unsigned char>(line.back()) & 0xC0) == 0x80)
            line.pop_back();
        if (!line.empty() && static_cast<unsigned char>(line.back()) >= 0xC0) line.pop_back();
    }
    return line;
}

}  // namespace host

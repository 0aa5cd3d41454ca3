// The one-line progress display: a bar, the percentage, what the test is doing and the time
// left.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace host {

// "0:07", "12:00", "1:02:03": minutes and seconds, with hours in front from one hour on.
std::string formatDuration(unsigned int seconds);

// "[#####...............]  25%  Reading sector 5 of 10  0:03 left", at most `width` characters
// (the text is cut to fit). Percentages above 100 show as 100.
std::string progressLine(unsigned int percent, const std::string& text,
                         std::optional<unsigned int> secondsLeft, std::size_t width = 100);

}  // namespace host

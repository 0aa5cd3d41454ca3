// The small pieces drivediag's option and device texts are made of: lists and whole numbers.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

namespace host {

// The parts of `text` between `separator`s, empty ones kept: "a,,b" gives "a", "", "b", and ""
// gives one empty part. The parts point into `text`.
std::vector<std::string_view> partsOf(std::string_view text, char separator);

// The whole of `text` as an unsigned number in `base` (no sign, blank or prefix); nullopt for
// anything else, an empty text or one that does not fit.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text, int base = 10) {
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value, base);
    if (text.empty() || failure != std::errc() || stop != end) return std::nullopt;
    return value;
}

}  // namespace host

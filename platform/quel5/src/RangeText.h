// The range text of a parameter: "[low,high]" with inclusive bounds, '(' or ')' for an exclusive
// bound, and an empty bound for no limit on that side ("[1,]"). An empty text is no range.
#pragma once

#include <optional>
#include <string_view>

namespace quel5::detail {

struct NumericRange {
    std::optional<double> low;
    std::optional<double> high;
    bool lowInclusive = true;
    bool highInclusive = true;

    bool contains(double value) const;
};

// The range of `text`, or nullopt when the text is not a range (no brackets, no comma, bounds
// that are not numbers, low above high).
std::optional<NumericRange> parseRange(std::wstring_view text);

}  // namespace quel5::detail

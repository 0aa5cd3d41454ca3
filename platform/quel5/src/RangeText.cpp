#include "RangeText.h"

#include "TextNumber.h"

namespace quel5::detail {

namespace {

// An empty bound is no limit; anything else must be a number.
bool parseBound(std::wstring_view text, std::optional<double>& bound) {
    text = trimBlanks(text);
    if (text.empty()) return true;
    bound = parseDecimal(text);
    return bound.has_value();
}

}  // namespace

bool NumericRange::contains(double value) const {
    if (low && (lowInclusive ? value < *low : value <= *low)) return false;
    if (high && (highInclusive ? value > *high : value >= *high)) return false;
    return true;
}

std::optional<NumericRange> parseRange(std::wstring_view text) {
    text = trimBlanks(text);
    if (text.empty()) return NumericRange{};
    if (text.size() < 3) return std::nullopt;
    const wchar_t open = text.front();
    const wchar_t close = text.back();
    if ((open != L'[' && open != L'(') || (close != L']' && close != L')')) return std::nullopt;
    const std::wstring_view inner = text.substr(1, text.size() - 2);
    const std::size_t comma = inner.find(L',');
    if (comma == std::wstring_view::npos ||
        inner.find(L',', comma + 1) != std::wstring_view::npos) {
        return std::nullopt;
    }
    NumericRange range;
    range.lowInclusive = open == L'[';
    range.highInclusive = close == L']';
    if (!parseBound(inner.substr(0, comma), range.low) ||
        !parseBound(inner.substr(comma + 1), range.high)) {
        return std::nullopt;
    }
    if (range.low && range.high && *range.low > *range.high) return std::nullopt;
    return range;
}

}  // namespace quel5::detail

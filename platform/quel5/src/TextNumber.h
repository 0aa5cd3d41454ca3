// Whole-text parsing and printing of decimal numbers, shared by values and parameters.
// Leading and trailing blanks (space, tab, CR, LF) are allowed around a number; anything else in
// the text makes a parse fail. No locale is involved: the decimal separator is always '.'.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quel5::detail {

std::wstring_view trimBlanks(std::wstring_view text);

// Digits only; fails on an empty text, a sign, or a value above 2^64 - 1.
std::optional<uint64_t> parseUnsigned(std::wstring_view text);
// Optional '+' or '-', then digits; fails outside the int64_t range.
std::optional<int64_t> parseSigned(std::wstring_view text);
// Optional sign, digits, optional '.' and fraction digits ("12", "12.5", ".5", "-3.").
// No exponent, no "inf" or "nan".
std::optional<double> parseDecimal(std::wstring_view text);

// The shortest plain text of `value`: "50" for 50.0, "12.5" for 12.5; at most six fraction
// digits, trailing zeros dropped.
std::wstring formatDecimal(double value);

}  // namespace quel5::detail

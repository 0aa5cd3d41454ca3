#include "TextNumber.h"

#include <charconv>
#include <cstdio>
#include <limits>

namespace quel5::detail {

namespace {

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }
bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

}  // namespace

std::wstring_view trimBlanks(std::wstring_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::optional<uint64_t> parseUnsigned(std::wstring_view text) {
    text = trimBlanks(text);
    if (text.empty()) return std::nullopt;
    uint64_t value = 0;
    for (wchar_t c : text) {
        if (!isDigit(c)) return std::nullopt;
        const uint64_t digit = static_cast<uint64_t>(c - L'0');
        if (value > (std::numeric_limits<uint64_t>::max() - digit) / 10) return std::nullopt;
        value = value * 10 + digit;
    }
    return value;
}

std::optional<int64_t> parseSigned(std::wstring_view text) {
    text = trimBlanks(text);
    bool negative = false;
    if (!text.empty() && (text.front() == L'-' || text.front() == L'+')) {
        negative = text.front() == L'-';
        text.remove_prefix(1);
    }
    const auto magnitude = parseUnsigned(text);
    if (!magnitude || text.empty() || isBlank(text.front())) return std::nullopt;
    constexpr uint64_t maxPositive = std::numeric_limits<int64_t>::max();
    if (negative) {
        if (*magnitude > maxPositive + 1) return std::nullopt;
        // Negate in unsigned arithmetic so that the minimum value does not overflow.
        return static_cast<int64_t>(0 - *magnitude);
    }
    if (*magnitude > maxPositive) return std::nullopt;
    return static_cast<int64_t>(*magnitude);
}

std::optional<double> parseDecimal(std::wstring_view text) {
    text = trimBlanks(text);
    std::string narrow;
    std::size_t digits = 0;
    bool seenPoint = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        if (isDigit(c)) {
            ++digits;
        } else if (c == L'.' && !seenPoint) {
            seenPoint = true;
        } else if (!((c == L'-' || c == L'+') && i == 0)) {
            return std::nullopt;
        }
        if (c != L'+') narrow.push_back(static_cast<char>(c));
    }
    if (digits == 0) return std::nullopt;
    double value = 0.0;
    const auto [end, error] = std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
    if (error != std::errc() || end != narrow.data() + narrow.size()) return std::nullopt;
    return value;
}

std::wstring formatDecimal(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.6f", value);
    std::string text(buffer);
    if (text.find('.') != std::string::npos) {
        while (text.back() == '0') text.pop_back();
        if (text.back() == '.') text.pop_back();
    }
    if (text == "-0") text = "0";
    return std::wstring(text.begin(), text.end());
}

}  // namespace quel5::detail

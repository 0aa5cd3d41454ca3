#include "kiv/String.h"

#include <cstdio>
#include <cwchar>

#include "kiv/CString.h"
#include "os/Utf8.h"

namespace kiv {
namespace {

static_assert(sizeof(wchar_t) == 2 || sizeof(wchar_t) == 4, "wchar_t is UTF-16 or UTF-32");

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n'; }

wchar_t asciiLower(wchar_t c) { return (c >= L'A' && c <= L'Z') ? wchar_t(c - L'A' + L'a') : c; }
wchar_t asciiUpper(wchar_t c) { return (c >= L'a' && c <= L'z') ? wchar_t(c - L'a' + L'A') : c; }

String fromAscii(const char* text) {
    std::wstring wide;
    for (; *text; ++text) wide += static_cast<wchar_t>(*text);
    return String(std::move(wide));
}

}  // namespace

String::String(const wchar_t* text) : text_(text ? text : L"") {}

String::String(std::wstring text) : text_(std::move(text)) {}

String String::fromUtf8(std::string_view utf8) { return String(os::fromUtf8(std::string(utf8))); }

std::string String::toUtf8() const { return os::toUtf8(text_); }

CString String::toCString() const { return CString(toUtf8()); }

String String::fromNumber(uint64_t value) { return fromUtf8(std::to_string(value)); }

String String::fromSignedNumber(int64_t value) { return fromUtf8(std::to_string(value)); }

String String::fromDouble(double value, int decimals) {
    if (decimals < 0) decimals = 0;
    if (decimals > 17) decimals = 17;
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
    return fromAscii(buffer);
}

String String::fromHex(uint64_t value, int width) {
    if (width < 0) width = 0;
    if (width > 16) width = 16;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%0*llX", width, static_cast<unsigned long long>(value));
    return fromAscii(buffer);
}

String String::trim() const {
    std::size_t begin = 0;
    std::size_t end = text_.size();
    while (begin < end && isBlank(text_[begin])) ++begin;
    while (end > begin && isBlank(text_[end - 1])) --end;
    return String(text_.substr(begin, end - begin));
}

String String::toLower() const {
    std::wstring out = text_;
    for (wchar_t& c : out) c = asciiLower(c);
    return String(std::move(out));
}

String String::toUpper() const {
    std::wstring out = text_;
    for (wchar_t& c : out) c = asciiUpper(c);
    return String(std::move(out));
}

String String::substring(std::size_t start, std::size_t count) const {
    if (start >= text_.size()) return String();
    return String(text_.substr(start, count));
}

bool String::contains(const String& part) const { return text_.find(part.text_) != npos; }

bool String::startsWith(const String& prefix) const {
    return text_.compare(0, prefix.text_.size(), prefix.text_) == 0;
}

std::size_t String::find(const String& part, std::size_t from) const {
    return text_.find(part.text_, from);
}

Array<String> String::tokenize(const String& delimiters) const {
    Array<String> tokens;
    if (delimiters.isEmpty()) {
        if (!isEmpty()) tokens.add(*this);
        return tokens;
    }
    std::size_t pos = 0;
    while (pos < text_.size()) {
        const std::size_t start = text_.find_first_not_of(delimiters.text_, pos);
        if (start == npos) break;
        std::size_t stop = text_.find_first_of(delimiters.text_, start);
        if (stop == npos) stop = text_.size();
        tokens.add(String(text_.substr(start, stop - start)));
        pos = stop;
    }
    return tokens;
}

int String::compare(const String& other) const {
    const int order = text_.compare(other.text_);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

int String::compareIgnoreCase(const String& other) const {
    return toLower().compare(other.toLower());
}

bool String::toUnsigned(uint64_t& out) const {
    if (text_.empty()) return false;
    uint64_t value = 0;
    for (wchar_t c : text_) {
        if (c < L'0' || c > L'9') return false;
        const uint64_t digit = static_cast<uint64_t>(c - L'0');
        if (value > (UINT64_MAX - digit) / 10) return false;
        value = value * 10 + digit;
    }
    out = value;
    return true;
}

String& String::operator+=(const String& other) {
    text_ += other.text_;
    return *this;
}

String operator+(const String& a, const String& b) {
    String sum = a;
    sum += b;
    return sum;
}

}  // namespace kiv

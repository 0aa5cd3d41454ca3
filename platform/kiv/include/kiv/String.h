// kiv::String: the common runtime's wide string (wchar_t: 16-bit UTF-16 on Windows, 32-bit on
// Linux). Conversions to and from 8-bit text are UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kiv/Array.h"
#include "kiv/Export.h"

namespace kiv {

class CString;

class KIV_API String {
public:
    String() = default;
    String(const wchar_t* text);  // NOLINT: implicit like a literal; nullptr gives ""
    String(std::wstring text);    // NOLINT
    static String fromUtf8(std::string_view utf8);

    // Numbers as decimal text; fromHex gives upper-case digits padded to `width`.
    static String fromNumber(uint64_t value);
    static String fromSignedNumber(int64_t value);
    static String fromDouble(double value, int decimals);
    static String fromHex(uint64_t value, int width);

    const std::wstring& str() const { return text_; }
    const wchar_t* c_str() const { return text_.c_str(); }
    std::string toUtf8() const;
    CString toCString() const;  // the UTF-8 form as a kiv::CString

    std::size_t length() const { return text_.size(); }
    bool isEmpty() const { return text_.empty(); }
    wchar_t operator[](std::size_t i) const { return text_.at(i); }

    // Copy without leading and trailing blanks (space, tab, CR, LF).
    String trim() const;
    String toLower() const;
    String toUpper() const;
    String substring(std::size_t start, std::size_t count = std::wstring::npos) const;
    bool contains(const String& part) const;
    bool startsWith(const String& prefix) const;
    // Position of the first occurrence at or after `from`, or npos.
    std::size_t find(const String& part, std::size_t from = 0) const;
    // An enumerator rather than a static data member: a data member of an exported class would
    // have to be imported from the DLL wherever it is bound to a reference.
    enum : std::size_t { npos = std::wstring::npos };

    // Splits at any character of `delimiters`, dropping empty tokens. An empty delimiter set
    // yields one token holding the whole text (none when the text is empty).
    Array<String> tokenize(const String& delimiters) const;

    // <0, 0, >0 like wcscmp; compareIgnoreCase folds ASCII case.
    int compare(const String& other) const;
    int compareIgnoreCase(const String& other) const;

    // Parses the whole text as a decimal unsigned number. False (and `out` untouched) when the
    // text is empty, has other characters, or overflows 64 bits.
    bool toUnsigned(uint64_t& out) const;

    String& operator+=(const String& other);
    friend KIV_API String operator+(const String& a, const String& b);
    bool operator==(const String& other) const { return text_ == other.text_; }
    bool operator!=(const String& other) const { return text_ != other.text_; }
    bool operator<(const String& other) const { return text_ < other.text_; }

private:
    std::wstring text_;
};

}  // namespace kiv

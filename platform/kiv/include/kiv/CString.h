// kiv::CString: the common runtime's 8-bit string (bytes, usually UTF-8). May hold zero bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kiv/Export.h"

namespace kiv {

class String;

class KIV_API CString {
public:
    CString() = default;
    CString(const char* text);                    // NOLINT: nullptr gives ""
    CString(std::string bytes);                   // NOLINT
    CString(const char* data, std::size_t size);  // `size` bytes, zeros included

    const std::string& str() const { return bytes_; }
    const char* c_str() const { return bytes_.c_str(); }
    std::size_t length() const { return bytes_.size(); }
    bool isEmpty() const { return bytes_.empty(); }

    String toString() const;  // decoded as UTF-8
    CString trim() const;
    // True when the text of `other` equals this text exactly, byte for byte. The text of a
    // CString ends at its first zero byte (or its end), so a terminating zero appended to one
    // side does not matter.
    bool directMatch(const CString& other) const;
    int compare(const CString& other) const;

    CString& operator+=(const CString& other);
    friend KIV_API CString operator+(const CString& a, const CString& b);
    bool operator==(const CString& other) const { return bytes_ == other.bytes_; }
    bool operator!=(const CString& other) const { return bytes_ != other.bytes_; }

private:
    std::string bytes_;
};

}  // namespace kiv

// QuelString: the framework's string, a wide string convertible to the common runtime's.
#pragma once

#include <string>

#include "kiv/String.h"
#include "quel5/Export.h"

class QUEL5_API QuelString {
public:
    QuelString() = default;
    QuelString(const wchar_t* text) : text_(text) {}                                  // NOLINT
    QuelString(const kiv::String& text) : text_(text) {}                              // NOLINT
    QuelString(const char* utf8) : text_(kiv::String::fromUtf8(utf8 ? utf8 : "")) {}  // NOLINT

    const kiv::String& kivString() const { return text_; }
    std::string toUtf8() const { return text_.toUtf8(); }
    bool isEmpty() const { return text_.isEmpty(); }

    bool operator==(const QuelString& other) const { return text_ == other.text_; }
    bool operator!=(const QuelString& other) const { return text_ != other.text_; }
    bool operator<(const QuelString& other) const { return text_ < other.text_; }

private:
    kiv::String text_;
};

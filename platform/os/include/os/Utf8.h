// Conversions between UTF-8 and the platform's wide strings (UTF-16 on Windows, UTF-32
// elsewhere). Neither fails. A byte that is not part of valid UTF-8 becomes the lone surrogate
// U+DC00 + byte and turns back into that byte, so any file name round-trips (Linux names are
// bytes); other lone surrogates become U+FFFD.
#pragma once

#include <string>

#include "os/Export.h"

namespace os {

OS_API std::string toUtf8(const std::wstring& text);
OS_API std::wstring fromUtf8(const std::string& text);

}  // namespace os

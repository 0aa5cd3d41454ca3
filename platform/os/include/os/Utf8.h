// Conversions between UTF-8 and the platform's wide strings (UTF-16 on Windows, UTF-32
// elsewhere). Invalid input becomes U+FFFD rather than failing.
#pragma once

#include <string>

#include "os/Export.h"

namespace os {

OS_API std::string toUtf8(const std::wstring& text);
OS_API std::wstring fromUtf8(const std::string& text);

}  // namespace os

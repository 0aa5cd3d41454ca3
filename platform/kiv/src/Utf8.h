// UTF-8 <-> UTF-16 / UTF-32 conversion used by kiv::String. Both wide forms are implemented on
// every platform so that each can be tested wherever the tests run; kiv::String picks the one
// matching the size of wchar_t.
//
// Malformed input never fails: an invalid UTF-8 sequence, an unpaired surrogate or a value
// above U+10FFFF becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace kiv::utf8 {

std::u16string toUtf16(std::string_view utf8);
std::u32string toUtf32(std::string_view utf8);
std::string fromUtf16(std::u16string_view utf16);
std::string fromUtf32(std::u32string_view utf32);

}  // namespace kiv::utf8

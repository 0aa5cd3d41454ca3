#include "os/Utf8.h"

#include <gtest/gtest.h>

namespace {

TEST(Utf8, RoundTripsEveryPlane) {
    struct Case {
        std::wstring wide;
        std::string utf8;
    };
    const Case cases[] = {
        {L"", ""},
        {L"/dev/sdb", "/dev/sdb"},
        {L"\\\\.\\PhysicalDrive1", "\\\\.\\PhysicalDrive1"},
        {L"\u00E9", "\xC3\xA9"},                    // two bytes
        {L"\u07FF\u0800", "\xDF\xBF\xE0\xA0\x80"},  // the two- and three-byte edges
        {L"\uFFFD", "\xEF\xBF\xBD"},
        {L"\U00010000", "\xF0\x90\x80\x80"},  // a surrogate pair on Windows
        {L"a\U0010FFFFz", "a\xF4\x8F\xBF\xBFz"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(os::toUtf8(c.wide), c.utf8);
        EXPECT_EQ(os::fromUtf8(c.utf8), c.wide);
    }
}

// A name that is not UTF-8 (a Linux file name is any bytes) must come back byte for byte, or
// the file it names cannot be opened.
TEST(Utf8, MalformedBytesAreEscapedAndComeBack) {
    struct Case {
        std::string utf8;
        std::wstring wide;
    };
    const Case cases[] = {
        {"\x80", L"\xDC80"},                                // a lone continuation byte
        {"a\xC3", L"a\xDCC3"},                              // cut short at the end
        {"\xC3(", L"\xDCC3("},                              // cut short by a plain character
        {"\xC0\xAF", L"\xDCC0\xDCAF"},                      // overlong
        {"\xED\xA0\x80", L"\xDCED\xDCA0\xDC80"},            // an encoded surrogate
        {"\xF4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80"},  // beyond U+10FFFF
        {"img\xFF.bin", L"img\xDCFF.bin"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(os::fromUtf8(c.utf8), c.wide) << testing::PrintToString(c.utf8);
        EXPECT_EQ(os::toUtf8(os::fromUtf8(c.utf8)), c.utf8) << testing::PrintToString(c.utf8);
    }
    // Other lone surrogates have no byte to stand for.
    EXPECT_EQ(os::toUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
    EXPECT_EQ(os::toUtf8(std::wstring(1, static_cast<wchar_t>(0xDC7F))), "\xEF\xBF\xBD");
}

}  // namespace

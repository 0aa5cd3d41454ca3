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

TEST(Utf8, MalformedInputBecomesReplacementCharacters) {
    struct Case {
        std::string utf8;
        std::wstring wide;
    };
    const Case cases[] = {
        {"\x80", L"\uFFFD"},              // a lone continuation byte
        {"a\xC3", L"a\uFFFD"},            // cut short at the end
        {"\xC0\xAF", L"\uFFFD"},          // overlong
        {"\xED\xA0\x80", L"\uFFFD"},      // an encoded surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD"},  // beyond U+10FFFF
        {"\xFFok", L"\uFFFDok"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(os::fromUtf8(c.utf8), c.wide) << testing::PrintToString(c.utf8);
    }
}

}  // namespace

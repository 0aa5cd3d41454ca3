#include <gtest/gtest.h>

#include "Utf8.h"

namespace {

using namespace kiv::utf8;

TEST(Utf8Test, NonBmpCharactersBecomeSurrogatePairsAndBack) {
    const struct {
        const char* utf8;
        std::u16string utf16;
        std::u32string utf32;
    } cases[] = {
        {"A", u"A", U"A"},
        {"\xC3\xA9", u"\u00E9", U"\u00E9"},
        {"\xEF\xBF\xBD", u"\uFFFD", U"\uFFFD"},
        {"\xF0\x90\x80\x80", {0xD800, 0xDC00}, {0x10000}},
        {"\xF0\x9F\x92\xBF", {0xD83D, 0xDCBF}, {0x1F4BF}},
        {"\xF4\x8F\xBF\xBF", {0xDBFF, 0xDFFF}, {0x10FFFF}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(toUtf16(c.utf8), c.utf16) << c.utf8;
        EXPECT_EQ(toUtf32(c.utf8), c.utf32) << c.utf8;
        EXPECT_EQ(fromUtf16(c.utf16), c.utf8);
        EXPECT_EQ(fromUtf32(c.utf32), c.utf8);
    }
}

TEST(Utf8Test, MalformedInputBecomesReplacementCharacters) {
    const struct {
        const char* utf8;
        std::u32string expected;
    } cases[] = {
        {"\x80", U"\uFFFD"},  // continuation without a lead
        {"\xC3", U"\uFFFD"},  // truncated at the end
        {"\xC3"
         "A",
         U"\uFFFDA"},                                       // lead then a plain byte
        {"\xC0\xAF", U"\uFFFD\uFFFD"},                      // overlong "/"
        {"\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},            // an encoded surrogate
        {"\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above U+10FFFF
        {"\xF8\x88\x80\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& c : cases) EXPECT_EQ(toUtf32(c.utf8), c.expected);
}

TEST(Utf8Test, LoneSurrogatesAreNotPassedThrough) {
    EXPECT_EQ(fromUtf16(std::u16string{0xD800}), "\xEF\xBF\xBD");
    EXPECT_EQ(fromUtf16(std::u16string{0xDC00, u'A'}),
              "\xEF\xBF\xBD"
              "A");
    EXPECT_EQ(fromUtf16(std::u16string{0xD800, u'A'}),
              "\xEF\xBF\xBD"
              "A");
    EXPECT_EQ(fromUtf32(std::u32string{0x110000}), "\xEF\xBF\xBD");
}

}  // namespace

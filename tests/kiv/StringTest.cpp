#include <gtest/gtest.h>

#include <vector>

#include "kiv/CString.h"
#include "kiv/String.h"

namespace {

using kiv::String;

std::vector<std::wstring> tokensOf(const String& text, const String& delimiters) {
    std::vector<std::wstring> out;
    for (const String& token : text.tokenize(delimiters)) out.push_back(token.str());
    return out;
}

TEST(StringTest, TrimRemovesOnlyOuterBlanks) {
    const struct {
        const wchar_t* text;
        const wchar_t* expected;
    } cases[] = {
        {L"", L""},         {L"   ", L""},    {L"a", L"a"},
        {L" a", L"a"},      {L"a ", L"a"},    {L"\t\r\n a b \n\r\t", L"a b"},
        {L"x  y", L"x  y"}, {L"\vz", L"\vz"},  // vertical tab is not one of the blanks
    };
    for (const auto& c : cases) {
        EXPECT_EQ(String(c.text).trim().str(), c.expected)
            << "text: '" << String(c.text).toUtf8() << "'";
    }
}

TEST(StringTest, TokenizeSplitsAtAnyDelimiterAndDropsEmptyTokens) {
    const struct {
        const wchar_t* text;
        const wchar_t* delimiters;
        std::vector<std::wstring> expected;
    } cases[] = {
        {L"a b c", L" ", {L"a", L"b", L"c"}},
        {L"  a  b  ", L" ", {L"a", L"b"}},
        {L"a,b;c", L",;", {L"a", L"b", L"c"}},
        {L",,,", L",", {}},
        {L"", L",", {}},
        {L"97:26:66", L":", {L"97", L"26", L"66"}},
        {L"\\systemroot\\system32\\drivers\\x.sys",
         L"",
         {L"\\systemroot\\system32\\drivers\\x.sys"}},
        {L" keep  blanks ", L"", {L" keep  blanks "}},
        {L"", L"", {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(tokensOf(c.text, c.delimiters), c.expected)
            << "text: '" << String(c.text).toUtf8() << "' delimiters: '"
            << String(c.delimiters).toUtf8() << "'";
    }
}

TEST(StringTest, ToUnsignedAcceptsOnlyWholeDecimalNumbersThatFit) {
    const struct {
        const wchar_t* text;
        bool ok;
        uint64_t value;
    } cases[] = {
        {L"0", true, 0},
        {L"007", true, 7},
        {L"65535", true, 65535},
        {L"18446744073709551615", true, UINT64_MAX},
        {L"18446744073709551616", false, 0},
        {L"99999999999999999999", false, 0},
        {L"", false, 0},
        {L"-1", false, 0},
        {L"+1", false, 0},
        {L" 1", false, 0},
        {L"1 ", false, 0},
        {L"12a", false, 0},
        {L"0x10", false, 0},
    };
    for (const auto& c : cases) {
        uint64_t out = 4242;
        EXPECT_EQ(String(c.text).toUnsigned(out), c.ok) << String(c.text).toUtf8();
        EXPECT_EQ(out, c.ok ? c.value : 4242u)
            << "untouched on failure: " << String(c.text).toUtf8();
    }
}

TEST(StringTest, NumbersAsText) {
    const struct {
        String actual;
        const wchar_t* expected;
    } cases[] = {
        {String::fromHex(0x3A02, 4), L"3A02"},
        {String::fromHex(0x2, 4), L"0002"},
        {String::fromHex(0xABCD1, 4), L"ABCD1"},  // wider than the width: never cut
        {String::fromHex(0, 0), L"0"},
        {String::fromHex(UINT64_MAX, 4), L"FFFFFFFFFFFFFFFF"},
        {String::fromNumber(UINT64_MAX), L"18446744073709551615"},
        {String::fromSignedNumber(INT64_MIN), L"-9223372036854775808"},
        {String::fromDouble(2.5, 2), L"2.50"},
        {String::fromDouble(-0.125, 1), L"-0.1"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.actual.str(), c.expected);
}

TEST(StringTest, Utf8RoundTripKeepsEveryCharacter) {
    const char* samples[] = {
        "",
        "plain ASCII",
        "caf\xC3\xA9",            // U+00E9
        "\xE2\x82\xAC 100",       // U+20AC
        "\xF0\x9F\x92\xBF disc",  // U+1F4BF, outside the BMP
        "\xF4\x8F\xBF\xBF",       // U+10FFFF, the last code point
        "a\xF0\x90\x80\x80z",     // U+10000, the first one past the BMP
    };
    for (const char* sample : samples) {
        const String wide = String::fromUtf8(sample);
        EXPECT_EQ(wide.toUtf8(), sample);
        EXPECT_EQ(wide.toCString().str(), sample);
    }
    // One character outside the BMP is two wchar_t on Windows and one elsewhere.
    EXPECT_EQ(String::fromUtf8("\xF0\x9F\x92\xBF").length(), sizeof(wchar_t) == 2 ? 2u : 1u);
}

TEST(StringTest, CaseAndSearch) {
    const String path(L"C:\\Windows\\System32\\Drivers\\CDROM.SYS");
    EXPECT_EQ(path.toLower().str(), L"c:\\windows\\system32\\drivers\\cdrom.sys");
    EXPECT_EQ(String(L"MaKer01").toUpper().str(), L"MAKER01");
    EXPECT_TRUE(path.toLower().contains(L"system32"));
    EXPECT_FALSE(path.contains(L"system32"));
    EXPECT_EQ(String(L"abc").compareIgnoreCase(L"ABC"), 0);
    EXPECT_LT(String(L"abc").compare(L"abd"), 0);
    EXPECT_GT(String(L"abcd").compare(L"abc"), 0);
    EXPECT_EQ(String(L"a:b:c").find(L":", 2), 3u);
    EXPECT_EQ(String(L"abc").find(L"x"), String::npos);
    EXPECT_EQ(String(L"abc").substring(1).str(), L"bc");
    EXPECT_EQ(String(L"abc").substring(5).str(), L"");
    EXPECT_TRUE(String(L"\\\\.\\E:").startsWith(L"\\\\.\\"));
    EXPECT_FALSE(String(L"ab").startsWith(L"abc"));
}

TEST(CStringTest, DirectMatchComparesTextUpToTheFirstZeroByte) {
    const struct {
        kiv::CString left;
        kiv::CString right;
        bool expected;
    } cases[] = {
        {"abc", "abc", true},
        {"abc", "abd", false},
        {"abc", "ab", false},
        {"ab", "abc", false},
        {"", "", true},
        {kiv::CString("abc\0", 4), "abc", true},
        {kiv::CString("abc\0x", 5), kiv::CString("abc\0y", 5), true},
        {kiv::CString("\0abc", 4), "", true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.left.directMatch(c.right), c.expected)
            << "'" << c.left.str() << "' vs '" << c.right.str() << "'";
        EXPECT_EQ(c.right.directMatch(c.left), c.expected) << "symmetry";
    }
}

TEST(CStringTest, KeepsZeroBytesAndTrims) {
    const kiv::CString bytes("a\0b", 3);
    EXPECT_EQ(bytes.length(), 3u);
    EXPECT_EQ(kiv::CString(" \tid \r\n").trim().str(), "id");
    EXPECT_EQ(kiv::CString(nullptr).length(), 0u);
    EXPECT_EQ((kiv::CString("ab") + kiv::CString("c")).str(), "abc");
    EXPECT_EQ(kiv::CString("\xC3\xA9").toString().str(), L"\u00E9");
}

}  // namespace

#include <gtest/gtest.h>

#include <vector>

#include "kiv/Regex.h"

namespace {

using kiv::Regex;

// The range syntax the library parses start and end texts with.
const char kRangePattern[] = "^(MIN|MAX){0,1}[ ]*([\\+-]){0,1}[ ]*([0-9]*)([KMG]B|%){0,1}$";

TEST(RegexTest, MatchesRequiresTheWholeTextWhileFindDoesNot) {
    const struct {
        const char* pattern;
        const wchar_t* text;
        bool whole;
        bool partial;
    } cases[] = {
        {"A.*", L"AB1", true, true},
        {"^A.*", L"AB1", true, true},
        {".*01$", L"MAKER01", true, true},
        {"B1", L"AB1", false, true},
        {"AB", L"AB1", false, true},
        {"ab1", L"AB1", false, false},
        {"", L"", true, true},
        {"", L"x", false, true},
        {"X", L"AB1", false, false},
    };
    for (const auto& c : cases) {
        const Regex regex(c.pattern, 0);
        ASSERT_TRUE(regex.isValid()) << c.pattern;
        kiv::Matcher whole = regex.matcher(c.text);
        kiv::Matcher partial = regex.matcher(c.text);
        EXPECT_EQ(whole.matches(), c.whole) << c.pattern;
        EXPECT_EQ(partial.find(), c.partial) << c.pattern;
    }
}

TEST(RegexTest, NumberedGroupsOfTheRangeSyntax) {
    const Regex regex(kRangePattern, 0);
    ASSERT_TRUE(regex.isValid()) << regex.getError().toUtf8();
    EXPECT_EQ(regex.groupCount(), 4u);
    const struct {
        const wchar_t* text;
        bool matches;
        std::vector<std::wstring> groups;  // 0 to 4
    } cases[] = {
        {L"MIN+1MB", true, {L"MIN+1MB", L"MIN", L"+", L"1", L"MB"}},
        {L"MAX-10%", true, {L"MAX-10%", L"MAX", L"-", L"10", L"%"}},
        {L"MAX - 10 %", false, {}},
        {L"100%", true, {L"100%", L"", L"", L"100", L"%"}},
        {L"MIN", true, {L"MIN", L"MIN", L"", L"", L""}},
        {L"", true, {L"", L"", L"", L"", L""}},
        {L"007GB", true, {L"007GB", L"", L"", L"007", L"GB"}},
        {L"MID", false, {}},
        {L"5TB", false, {}},
        {L"min+1", false, {}},
    };
    for (const auto& c : cases) {
        kiv::Matcher matcher = regex.matcher(c.text);
        ASSERT_EQ(matcher.matches(), c.matches) << kiv::String(c.text).toUtf8();
        for (std::size_t n = 0; n < c.groups.size(); ++n) {
            EXPECT_EQ(matcher.getGroup(n).str(), c.groups[n])
                << kiv::String(c.text).toUtf8() << " group " << n;
        }
        EXPECT_EQ(matcher.getGroup(5).str(), L"") << "past the last group";
    }
}

TEST(RegexTest, FailedMatchForgetsTheGroupsOfTheLastOne) {
    const Regex regex("(a+)(b)?", 0);
    kiv::Matcher matcher = regex.matcher(L"aab");
    ASSERT_TRUE(matcher.matches());
    EXPECT_EQ(matcher.getGroup(1).str(), L"aa");
    EXPECT_EQ(matcher.getGroup(2).str(), L"b");

    kiv::Matcher other = regex.matcher(L"xyz");
    EXPECT_FALSE(other.matches());
    EXPECT_EQ(other.getGroup(0).str(), L"");
    EXPECT_EQ(other.groupCount(), 2u);
}

TEST(RegexTest, InvalidPatternsReportWithoutThrowingAndNeverMatch) {
    for (const char* pattern : {"(", "[a-", "a{2,1}", "*a", "(?<"}) {
        const Regex regex(pattern, 0);
        EXPECT_FALSE(regex.isValid()) << pattern;
        EXPECT_FALSE(regex.getError().isEmpty()) << pattern;
        EXPECT_EQ(regex.groupCount(), 0u);
        kiv::Matcher matcher = regex.matcher(L"(");
        EXPECT_FALSE(matcher.matches()) << pattern;
        EXPECT_FALSE(matcher.find()) << pattern;
    }
}

TEST(RegexTest, MatcherOutlivesItsRegexAndFlagsApply) {
    auto matcher = Regex("^maker[0-9]+$", Regex::CASE_INSENSITIVE).matcher(L"MAKER01");
    EXPECT_TRUE(matcher.matches());
    EXPECT_FALSE(Regex("^maker[0-9]+$", 0).matcher(L"MAKER01").matches());
    // A non-ASCII pattern is read as UTF-8 and matches one character.
    EXPECT_TRUE(Regex("^caf\xC3\xA9.$", 0).matcher(L"caf\u00E9s").matches());
}

// Without the bound a text of many thousand characters overflows the stack (one engine call
// per character), so these texts must be refused before the engine sees them.
TEST(RegexTest, TextsPastTheBoundNeverMatchAndDoNotCrash) {
    const Regex regex(kRangePattern, 0);
    const std::size_t bound = Regex::MAX_TEXT_LENGTH;
    const struct {
        std::wstring text;
        bool matches;
    } cases[] = {
        {std::wstring(bound, L'7'), true},
        {L"MIN" + std::wstring(bound - 5, L' ') + L"+1", true},
        {std::wstring(bound + 1, L'7'), false},
        {L"MIN" + std::wstring(bound - 4, L' ') + L"+1", false},
        {std::wstring(1 << 20, L'7') + L"%", false},
    };
    for (const auto& c : cases) {
        kiv::Matcher whole = regex.matcher(c.text);
        kiv::Matcher partial = regex.matcher(c.text);
        EXPECT_EQ(whole.matches(), c.matches) << c.text.size() << " characters";
        EXPECT_EQ(partial.find(), c.matches) << c.text.size() << " characters";
        EXPECT_EQ(whole.getGroup(0).length(), c.matches ? c.text.size() : 0u);
    }
}

}  // namespace

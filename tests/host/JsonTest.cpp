#include <gtest/gtest.h>

#include "cli/Json.h"

namespace {

TEST(JsonTest, StringsAreQuotedAndEscaped) {
    const struct {
        std::string input;
        std::string expected;
    } cases[] = {
        {"", "\"\""},
        {"plain", "\"plain\""},
        {"say \"hi\"", "\"say \\\"hi\\\"\""},
        {"C:\\path\\to", "\"C:\\\\path\\\\to\""},
        {"a\nb\rc\td", "\"a\\nb\\rc\\td\""},
        {"\b\f", "\"\\b\\f\""},
        {std::string("nul\0x", 5), "\"nul\\u0000x\""},
        {"\x01\x1f", "\"\\u0001\\u001f\""},
        {"del\x7f", "\"del\\u007f\""},
        {"/ stays", "\"/ stays\""},
        // Valid UTF-8 passes through: 2, 3 and 4 byte forms.
        {"caf\xc3\xa9", "\"caf\xc3\xa9\""},
        {"\xe2\x82\xac", "\"\xe2\x82\xac\""},
        {"\xf0\x9f\x98\x80", "\"\xf0\x9f\x98\x80\""},
        // Broken UTF-8 becomes U+FFFD, one per bad byte, and the rest survives.
        {"bad\xff", "\"bad\\ufffd\""},
        {"\xc3", "\"\\ufffd\""},
        {"\xc3(", "\"\\ufffd(\""},
        {"\xc0\xaf", "\"\\ufffd\\ufffd\""},                        // overlong '/'
        {"\xe0\x80\xaf", "\"\\ufffd\\ufffd\\ufffd\""},             // overlong 3-byte form
        {"\xed\xa0\x80", "\"\\ufffd\\ufffd\\ufffd\""},             // a surrogate
        {"\xf4\x90\x80\x80", "\"\\ufffd\\ufffd\\ufffd\\ufffd\""},  // past U+10FFFF
        {"\xe2\x82", "\"\\ufffd\\ufffd\""},                        // cut short at the end
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(host::jsonString(c.input), c.expected);
    }
}

TEST(JsonTest, ValuesKeepTheirKind) {
    const struct {
        quel5::Value value;
        std::string expected;
    } cases[] = {
        {quel5::Value(), "null"},
        {quel5::Value(4294967295u), "4294967295"},
        {quel5::Value(18446744073709551615ull), "18446744073709551615"},
        {quel5::Value(-5), "-5"},
        {quel5::Value(-9223372036854775807ll - 1), "-9223372036854775808"},
        {quel5::Value::percent(12.5), "12.5"},
        {quel5::Value::percent(100.0), "100"},
        {quel5::Value::boolean(true), "true"},
        {quel5::Value::boolean(false), "false"},
        {quel5::Value("3A00"), "\"3A00\""},
        {quel5::Value("a\"b"), "\"a\\\"b\""},
        {quel5::Value::uint32Array({}), "[]"},
        {quel5::Value::uint32Array({1, 2, 3}), "[1,2,3]"},
        {quel5::Value::stringArray({L"x", L"y\"z"}), "[\"x\",\"y\\\"z\"]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(host::jsonValue(c.value), c.expected);
    }
}

TEST(JsonTest, ObjectsKeepFieldOrderAndEscapeNames) {
    const quel5::Variables variables = {{"ReadSector", quel5::Value(7u)},
                                        {"Odd\"Name", quel5::Value("v")}};
    EXPECT_EQ(host::jsonVariables(variables), "{\"ReadSector\":7,\"Odd\\\"Name\":\"v\"}");
    EXPECT_EQ(host::jsonVariables({}), "{}");
    EXPECT_EQ(host::JsonObject()
                  .text("type", "event")
                  .number("n", 18446744073709551615ull)
                  .signedNumber("s", -1)
                  .boolean("b", false)
                  .raw("o", "{}")
                  .str(),
              "{\"type\":\"event\",\"n\":18446744073709551615,\"s\":-1,\"b\":false,\"o\":{}}");
}

}  // namespace

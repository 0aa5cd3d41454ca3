#include <gtest/gtest.h>

#include <string>

#include "quel5/Value.h"
#include "support/Printers.h"

namespace {

using quel5::DataType;
using quel5::Value;

struct ReaderCase {
    const char* what;
    Value value;
    DataType::Kind kind;
    uint32_t asUint32;
    uint64_t asUint64;
    double asPercent;
    bool asBool;
    std::string asText;
};

TEST(ValueTest, ReadersConvertBetweenKinds) {
    const ReaderCase cases[] = {
        {"uint32", Value(7u), DataType::Kind::UINT32, 7, 7, 7.0, true, "7"},
        {"uint32 max", Value(4294967295u), DataType::Kind::UINT32, 4294967295u, 4294967295u,
         4294967295.0, true, "4294967295"},
        {"uint64 keeps low bits", Value(0x100000005ull), DataType::Kind::UINT64, 5, 0x100000005ull,
         4294967301.0, true, "4294967301"},
        {"uint64 max", Value(18446744073709551615ull), DataType::Kind::UINT64, 4294967295u,
         18446744073709551615ull, 18446744073709551615.0, true, "18446744073709551615"},
        {"negative int", Value(-1), DataType::Kind::INT64, 4294967295u, 18446744073709551615ull,
         -1.0, true, "-1"},
        {"zero", Value(0), DataType::Kind::INT64, 0, 0, 0.0, false, "0"},
        {"percent", Value::percent(12.75), DataType::Kind::PERCENT, 12, 12, 12.75, true, "12.75"},
        {"whole percent", Value::percent(50.0), DataType::Kind::PERCENT, 50, 50, 50.0, true, "50"},
        {"boolean true", Value::boolean(true), DataType::Kind::BOOLEAN, 1, 1, 1.0, true, "true"},
        {"boolean false", Value::boolean(false), DataType::Kind::BOOLEAN, 0, 0, 0.0, false,
         "false"},
        {"numeric text", Value("123"), DataType::Kind::STRING, 123, 123, 123.0, true, "123"},
        {"text with blanks", Value(L" 42 "), DataType::Kind::STRING, 42, 42, 42.0, true, " 42 "},
        {"wide text past 32 bits", Value(L"4294967296"), DataType::Kind::STRING, 0, 4294967296ull,
         4294967296.0, true, "4294967296"},
        {"negative text", Value("-1"), DataType::Kind::STRING, 4294967295u, 18446744073709551615ull,
         -1.0, true, "-1"},
        {"decimal text", Value("12.7"), DataType::Kind::STRING, 12, 12, 12.7, true, "12.7"},
        {"word text", Value("abc"), DataType::Kind::STRING, 0, 0, 0.0, false, "abc"},
        {"true text", Value("TRUE"), DataType::Kind::STRING, 0, 0, 0.0, true, "TRUE"},
        {"empty text", Value(""), DataType::Kind::STRING, 0, 0, 0.0, false, ""},
        {"none", Value(), DataType::Kind::NONE, 0, 0, 0.0, false, ""},
        {"number array", Value::uint32Array({1, 2, 3}), DataType::Kind::UINT32_ARRAY, 0, 0, 0.0,
         false, "1,2,3"},
        {"text array", Value::stringArray({L"a", L"b"}), DataType::Kind::STRING_ARRAY, 0, 0, 0.0,
         false, "a,b"},
    };
    for (const ReaderCase& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.value.kind(), c.kind);
        EXPECT_EQ(c.value.valueUint32(), c.asUint32);
        EXPECT_EQ(c.value.valueUint64(), c.asUint64);
        EXPECT_DOUBLE_EQ(c.value.valuePercent(), c.asPercent);
        EXPECT_EQ(c.value.valueBool(), c.asBool);
        EXPECT_EQ(c.value.valueString().toUtf8(), c.asText);
        EXPECT_EQ(c.value.toString().toUtf8(), c.asText);
    }
}

TEST(ValueTest, UnsignedLongTakesTheWidthOfThePlatform) {
    const Value value(static_cast<unsigned long>(9));
    EXPECT_EQ(value.kind(),
              sizeof(unsigned long) == 4 ? DataType::Kind::UINT32 : DataType::Kind::UINT64);
    EXPECT_EQ(value, Value(9u));
}

TEST(ValueTest, ArrayReadersAnswerZeroPastTheEnd) {
    const Value numbers = Value::uint32Array({10, 20});
    EXPECT_EQ(numbers.Uint32ArraySize(), 2u);
    EXPECT_EQ(numbers.getUint32InArray(0), 10u);
    EXPECT_EQ(numbers.getUint32InArray(1), 20u);
    EXPECT_EQ(numbers.getUint32InArray(2), 0u);
    EXPECT_EQ(numbers.stringArraySize(), 0u);

    const Value texts = Value::stringArray({L"x", L"y"});
    EXPECT_EQ(texts.stringArraySize(), 2u);
    EXPECT_EQ(texts.getStringInArray(1), QuelString("y"));
    EXPECT_TRUE(texts.getStringInArray(2).isEmpty());
    EXPECT_EQ(texts.Uint32ArraySize(), 0u);
}

TEST(ValueTest, EqualityComparesIntegersByNumber) {
    struct Case {
        const char* what;
        Value a, b;
        bool equal;
    };
    const Case cases[] = {
        {"int and unsigned", Value(5), Value(5u), true},
        {"uint32 and uint64", Value(5u), Value(5ull), true},
        {"different numbers", Value(5u), Value(6u), false},
        {"negative never equals unsigned", Value(-1), Value(18446744073709551615ull), false},
        {"number and its text", Value(5u), Value("5"), false},
        {"texts", Value("a"), Value(L"a"), true},
        {"percents", Value::percent(1.5), Value::percent(1.5), true},
        {"boolean and one", Value::boolean(true), Value(1u), false},
        {"arrays", Value::uint32Array({1, 2}), Value::uint32Array({1, 2}), true},
        {"arrays differ", Value::uint32Array({1, 2}), Value::uint32Array({2, 1}), false},
        {"none", Value(), Value(), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.a == c.b, c.equal);
        EXPECT_EQ(c.b == c.a, c.equal);
        EXPECT_EQ(c.a != c.b, !c.equal);
    }
}

}  // namespace

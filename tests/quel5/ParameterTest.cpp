#include <gtest/gtest.h>

#include <string>

#include "quel5/DiagModule.h"
#include "quel5/Registry.h"
#include "support/Printers.h"

namespace {

using quel5::DataType;
using quel5::ParameterSource;
using quel5::Value;

struct TextCase {
    const char* text;
    bool accepted;
    Value expected;  // when accepted
};

struct TypeCase {
    const char* name;
    DataType type;
    const char* range;
    std::vector<TextCase> texts;
};

TEST(ParameterTest, SetFromTextParsesByTypeAndChecksTheRange) {
    const DataType uint64Type(DataType::Kind::UINT64);
    const DataType int64Type(DataType::Kind::INT64);
    const TypeCase cases[] = {
        {"P_Uint32",
         DataType::UINT32,
         "",
         {{"0", true, Value(0u)},
          {"4294967295", true, Value(4294967295u)},
          {" 10 ", true, Value(10u)},
          {"4294967296", false, {}},
          {"-1", false, {}},
          {"1.5", false, {}},
          {"", false, {}},
          {"12abc", false, {}}}},
        {"P_Uint32Ranged",
         DataType::UINT32,
         "[1,100]",
         {{"1", true, Value(1u)},
          {"100", true, Value(100u)},
          {"0", false, {}},
          {"101", false, {}}}},
        {"P_Uint32Open",
         DataType::UINT32,
         "(1,100)",
         {{"1", false, {}}, {"2", true, Value(2u)}, {"99", true, Value(99u)}, {"100", false, {}}}},
        {"P_Uint32LowOnly",
         DataType::UINT32,
         "[5,]",
         {{"4", false, {}}, {"4294967295", true, Value(4294967295u)}}},
        {"P_Percent",
         DataType::PERCENT,
         "",
         {{"0", true, Value::percent(0.0)},
          {"100", true, Value::percent(100.0)},
          {"12.5", true, Value::percent(12.5)},
          {"40%", true, Value::percent(40.0)},
          {"100.5", false, {}},
          {"-1", false, {}},
          {"half", false, {}}}},
        {"P_PercentRanged",
         DataType::PERCENT,
         "[1,100]",
         {{"0.5", false, {}}, {"1", true, Value::percent(1.0)}}},
        {"P_Bool",
         DataType::BOOLEAN,
         "",
         {{"true", true, Value::boolean(true)},
          {"FALSE", true, Value::boolean(false)},
          {"1", true, Value::boolean(true)},
          {"0", true, Value::boolean(false)},
          {"yes", false, {}},
          {"2", false, {}}}},
        {"P_String",
         DataType::STRING,
         "[1,100]",
         {{"10%", true, Value("10%")}, {"", true, Value("")}}},
        {"P_Uint64",
         uint64Type,
         "",
         {{"18446744073709551615", true, Value(18446744073709551615ull)},
          {"18446744073709551616", false, {}}}},
        {"P_Int64",
         int64Type,
         "[-10,10]",
         {{"-10", true, Value(-10)}, {"+10", true, Value(10)}, {"-11", false, {}}}},
        {"P_BadRange", DataType::UINT32, "[100,1]", {{"50", false, {}}}},
        {"P_NoBrackets", DataType::UINT32, "1,100", {{"50", false, {}}}},
    };
    for (const TypeCase& c : cases) {
        quel5::Parameter* parameter =
            quel5::DiagModule::createParameter(c.name, c.type, c.range, false, false);
        for (const TextCase& t : c.texts) {
            SCOPED_TRACE(std::string(c.name) + " <- \"" + t.text + "\"");
            parameter->clear();
            kiv::String error;
            EXPECT_EQ(quel5::Registry::instance().setParameter(
                          c.name, kiv::String::fromUtf8(t.text), &error),
                      t.accepted);
            EXPECT_EQ(parameter->isset(), t.accepted);
            if (t.accepted) {
                EXPECT_EQ(parameter->value(), t.expected);
                EXPECT_EQ(parameter->valueSource(), ParameterSource::HOST());
                EXPECT_TRUE(error.isEmpty());
            } else {
                EXPECT_EQ(parameter->value(), Value());
                EXPECT_TRUE(error.startsWith(kiv::String::fromUtf8(c.name) + L": "))
                    << error.toUtf8();
            }
        }
    }
}

TEST(ParameterTest, RejectedTextKeepsThePreviousValue) {
    quel5::Parameter* parameter = quel5::DiagModule::createParameter(
        "P_KeepsValue", DataType::PERCENT, "[1,100]", true, false);
    ASSERT_TRUE(parameter->setFromText(L"30", nullptr));
    EXPECT_FALSE(parameter->setFromText(L"0", nullptr));
    EXPECT_TRUE(parameter->isset());
    EXPECT_DOUBLE_EQ(parameter->value().valuePercent(), 30.0);
    EXPECT_EQ(parameter->toString().toUtf8(), "30");
}

TEST(ParameterTest, ClearingReportsNotSet) {
    quel5::Registry& registry = quel5::Registry::instance();
    quel5::Parameter* first =
        quel5::DiagModule::createParameter("P_ClearA", DataType::UINT32, "", false, false);
    quel5::Parameter* second =
        quel5::DiagModule::createParameter("P_ClearB", DataType::STRING, "", false, false);
    ASSERT_TRUE(registry.setParameter("P_ClearA", L"7", nullptr));
    ASSERT_TRUE(registry.setParameter("P_ClearB", L"x", nullptr));
    EXPECT_TRUE(registry.clearParameter("P_ClearA"));
    EXPECT_EQ(first->valueSource(), ParameterSource::NOTSET());
    EXPECT_EQ(first->value(), Value());
    EXPECT_TRUE(second->isset());

    registry.clearAllParameters();
    EXPECT_EQ(second->valueSource(), ParameterSource::NOTSET());
    EXPECT_EQ(second->toString().toUtf8(), "");
}

TEST(ParameterTest, UnknownKeyIsRefused) {
    kiv::String error;
    EXPECT_FALSE(quel5::Registry::instance().setParameter("P_NobodyMadeMe", L"1", &error));
    EXPECT_TRUE(error.contains(L"P_NobodyMadeMe"));
    EXPECT_FALSE(quel5::Registry::instance().clearParameter("P_NobodyMadeMe"));
}

}  // namespace

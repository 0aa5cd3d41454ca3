#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quel5/DiagModule.h"
#include "support/Printers.h"
#include "support/RecordingHost.h"

namespace {

using quel5::Value;

std::vector<std::string> namesOf(const quel5::Variables& variables) {
    std::vector<std::string> names;
    for (const auto& entry : variables) names.push_back(entry.first.toUtf8());
    return names;
}

TEST(EventTest, VariablesKeepFirstSetOrderAndReplaceInPlace) {
    struct Step {
        const char* name;
        Value value;
    };
    struct Case {
        const char* what;
        std::vector<Step> steps;
        std::vector<std::string> names;
        std::vector<Value> values;
    };
    const Case cases[] = {
        {"order of first set", {{"B", 1u}, {"A", 2u}}, {"B", "A"}, {Value(1u), Value(2u)}},
        {"re-set keeps the place",
         {{"A", 1u}, {"B", 2u}, {"A", "x"}},
         {"A", "B"},
         {Value("x"), Value(2u)}},
        {"last re-set wins",
         {{"A", 1u}, {"A", 2u}, {"A", 3u}, {"C", 4u}},
         {"A", "C"},
         {Value(3u), Value(4u)}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        quel5::Event event("Ev");
        quel5::LocalizedString text("Str");
        for (const Step& step : c.steps) {
            event.setVariable(step.name, step.value);
            text.setVariable(step.name, step.value);
        }
        for (const quel5::Variables* variables : {&event.variables(), &text.variables()}) {
            EXPECT_EQ(namesOf(*variables), c.names);
            ASSERT_EQ(variables->size(), c.values.size());
            for (std::size_t i = 0; i < c.values.size(); ++i) {
                EXPECT_EQ((*variables)[i].second, c.values[i]);
            }
        }
    }
}

TEST(EventTest, LocalizedTextComesFromTheHostOrIsTheKey) {
    quel5::LocalizedString text("READ_SECTOR");
    text.setVariable("ReadSector", 5ull).setVariable("EndSector", 9ull);
    EXPECT_EQ(text.localizedString(), QuelString("READ_SECTOR"));

    testsupport::RecordingHost host;
    testsupport::ScopedHost installed(host);
    EXPECT_EQ(text.localizedString(), QuelString("READ_SECTOR{ReadSector=5,EndSector=9}"));
    EXPECT_EQ(quel5::LocalizedString("PLAIN").localizedString(), QuelString("PLAIN"));
}

}  // namespace

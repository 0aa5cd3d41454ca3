#include "host/TestTable.h"

#include "libDrive/DriveTest.h"
#include "libDrive/LinearSeekTest.h"

namespace host {
namespace {

std::string defaultMaxErrors() {
    return std::to_string(kivrlibdrive::DriveTest::DEFAULT_MAX_ERRORS);
}

template <typename Test>
quel5::TestResult runTest(kivrlibdrive::Drive& drive) {
    Test test(drive);
    return test.Run();
}

std::vector<TestDefinition> buildTable() {
    return {
        {"linear-seek",
         "Reads single sectors at equal steps from the start of the range to its end.",
         {{"MaxErrors", defaultMaxErrors()}, {"NumberOfSeeks", "1000"}},
         runTest<kivrlibdrive::CLinearSeekTest>},
    };
}

}  // namespace

std::span<const TestDefinition> testTable() {
    static const std::vector<TestDefinition> table = buildTable();
    return table;
}

const TestDefinition* findTest(std::string_view name) {
    for (const TestDefinition& test : testTable()) {
        if (test.name == name) return &test;
    }
    return nullptr;
}

}  // namespace host

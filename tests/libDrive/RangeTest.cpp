// CRange: range texts into sectors, the amount to test, the large-drive texts and the clamps.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "DriveTestSupport.h"
#include "kiv/Exception.h"
#include "libDrive/Exceptions.h"
#include "libDrive/Parameters.h"
#include "libDrive/Range.h"

namespace {

using kivrlibdrive::CRange;

class RangeTest : public drivetests::DriveTestFixture {};

// Parameters left null stay unset.
struct Setting {
    const char* start = nullptr;
    const char* end = nullptr;
    const char* percent = nullptr;
    const char* seeks = nullptr;
};

void apply(const Setting& setting) {
    if (setting.start) drivetests::setParameter("StartRange", setting.start);
    if (setting.end) drivetests::setParameter("EndRange", setting.end);
    if (setting.percent) drivetests::setParameter("SectorPercentToTest", setting.percent);
    if (setting.seeks) drivetests::setParameter("NumberOfSeeks", setting.seeks);
}

struct Expected {
    uint64_t start;
    uint64_t end;
    uint64_t toTest;
    uint64_t jump;
    uint64_t seeks;
    double percent;
};

struct ValidCase {
    const char* name;
    uint64_t total;
    uint32_t bytesPerSector;
    bool allowPercent;
    bool allowSeeks;
    Setting setting;
    Expected expected;
};

TEST_F(RangeTest, ValidTextsAndAmounts) {
    // clang-format off
    const ValidCase cases[] = {
        {"defaults, no amount wanted", 1000000, 512, false, false, {}, {0, 1000000, 1000000, 1, 0, 100}},
        {"MB at 512 bytes", 1000000, 512, false, false, {"MIN+1MB"}, {2048, 1000000, 997952, 1, 0, 100}},
        {"KB", 1000000, 512, false, false, {"MIN+3KB"}, {6, 1000000, 999994, 1, 0, 100}},
        {"KB below one sector", 1000000, 4096, false, false, {"MIN+3KB"}, {0, 1000000, 1000000, 1, 0, 100}},
        {"GB below the end", 4194304, 512, false, false, {"MAX-1GB"}, {2097152, 4194304, 2097152, 1, 0, 100}},
        {"plain size", 1000000, 512, false, false, {"2KB", "3KB"}, {4, 6, 2, 1, 0, 100}},
        {"percent below the end", 1000000, 512, false, false, {"MAX-10%"}, {900000, 1000000, 100000, 1, 0, 100}},
        {"end at 100 percent", 1000000, 512, false, false, {"0", "100%"}, {0, 1000000, 1000000, 1, 0, 100}},
        {"start 0 percent", 1000, 512, false, false, {"0%", "1%"}, {0, 10, 10, 1, 0, 100}},
        {"percent rounded down once", 1234, 512, false, false, {"10%", "MAX-1%"}, {123, 1222, 1099, 1, 0, 100}},
        {"leading zeros", 1000000, 512, false, false, {"0010", "MIN+007%"}, {10, 70000, 69990, 1, 0, 100}},
        {"blanks inside and around", 1000000, 512, false, false, {"  MIN +  10% ", "MAX - 5"}, {100000, 999995, 899995, 1, 0, 100}},
        {"end beyond the capacity is cut", 1000000, 512, false, false, {nullptr, "MIN+2000000"}, {0, 1000000, 1000000, 1, 0, 100}},
        {"plain numbers", 1000000, 512, true, true, {"100", "1100", nullptr, "10"}, {100, 1100, 0, 100, 10, 0}},
        {"seeks above the span", 1000, 512, true, true, {"100", "105", nullptr, "10"}, {100, 105, 0, 1, 5, 0}},
        {"seeks equal to the span", 1000, 512, true, true, {"100", "105", nullptr, "5"}, {100, 105, 0, 1, 5, 0}},
        {"seeks not dividing the span", 1000, 512, true, true, {"0", "10", nullptr, "3"}, {0, 10, 0, 3, 3, 0}},
        {"percent", 100000, 512, true, true, {"1000", "2000", "10"}, {1000, 2000, 100, 10, 0, 10}},
        {"percent truncated", 100000, 512, true, true, {"0", "1000", "33"}, {0, 1000, 330, 3, 0, 33}},
        {"percent of a tiny span", 100000, 512, true, false, {"0", "50", "1"}, {0, 50, 0, 1, 0, 1}},
        {"seeks win when both are set", 100000, 512, true, true, {"0", "1000", "10", "4"}, {0, 1000, 0, 250, 4, 0}},
        {"seeks not allowed", 100000, 512, true, false, {"0", "1000", "10", "4"}, {0, 1000, 100, 10, 0, 10}},
        {"percent not allowed", 100000, 512, false, true, {"0", "1000", "10", "4"}, {0, 1000, 0, 250, 4, 0}},
    };
    // clang-format on
    for (const ValidCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll();
        apply(c.setting);
        try {
            const CRange range(c.total, c.bytesPerSector, c.allowPercent, c.allowSeeks);
            EXPECT_EQ(range.GetStartRange(), c.expected.start);
            EXPECT_EQ(range.GetEndRange(), c.expected.end);
            EXPECT_EQ(range.GetSectorTotalToTest(), c.expected.toTest);
            EXPECT_EQ(range.GetJumpCount(), c.expected.jump);
            EXPECT_EQ(range.GetNumberOfSeeks(), c.expected.seeks);
            EXPECT_DOUBLE_EQ(range.GetSectorPercentToTest(), c.expected.percent);
        } catch (const kiv::Exception& failure) {
            ADD_FAILURE() << "threw: " << failure.getMessage().toUtf8();
        }
        EXPECT_TRUE(host.events().empty());
    }
}

struct BadTextCase {
    const char* name;
    const char* parameter;  // "StartRange" or "EndRange"
    std::string text;
};

// Texts of tens of thousands of characters once overflowed the stack of the pattern matcher.
TEST_F(RangeTest, MalformedTextsAreRefusedWithTheParameterNamed) {
    // clang-format off
    const BadTextCase cases[] = {
        {"MAX", "StartRange", "MAX"}, {"MAX+5", "StartRange", "MAX+5"}, {"MIN-5", "StartRange", "MIN-5"},
        {"100%", "StartRange", "100%"}, {"5TB", "StartRange", "5TB"}, {"1mb", "StartRange", "1mb"},
        {"5 MB", "StartRange", "5 MB"}, {"-5", "StartRange", "-5"}, {"abc", "StartRange", "abc"},
        {"30000 digits", "StartRange", std::string(30000, '1')},
        {"MIN, 60000 blanks, +1", "StartRange", "MIN" + std::string(60000, ' ') + "+1"},
        {"end MAX+5", "EndRange", "MAX+5"}, {"end MIN", "EndRange", "MIN"}, {"end MIN-5", "EndRange", "MIN-5"},
        {"end 0", "EndRange", "0"}, {"end 0%", "EndRange", "0%"}, {"end 101%", "EndRange", "101%"},
        {"end 1.5GB", "EndRange", "1.5GB"},
        {"60000 digits and a percent sign", "EndRange", std::string(60000, '5') + "%"},
    };
    // clang-format on
    for (const BadTextCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll();
        set(c.parameter, c.text.c_str());
        try {
            CRange range(1000000, 512, false, false);
            ADD_FAILURE() << "accepted, start " << range.GetStartRange();
        } catch (const kivrlibdrive::CannotRun& failure) {
            EXPECT_EQ(failure.getMessage().toUtf8(), "");
        }
        EXPECT_EQ(
            host.eventSummaries(),
            std::vector<std::string>{"WARNING InvalidRangeEntry@libDrive/Range{PARAMETER_NAME=" +
                                     std::string(c.parameter) + "}"});
        const bool start = std::string(c.parameter) == "StartRange";
        EXPECT_TRUE(wasLogged(
            "libDrive.Range", 4,
            start ? "139 StartRange string is not valid" : "159 EndRange string is not valid"));
    }
}

struct AmountCase {
    const char* name;
    bool allowPercent;
    bool allowSeeks;
    Setting setting;
    std::vector<std::string> errors;
};

TEST_F(RangeTest, NoUsableAmountIsAnInvalidRange) {
    // clang-format off
    const AmountCase cases[] = {
        {"nothing set", true, true, {}, {"InvalidSectorPercentToTestValue", "InvalidNumberOfSeeksValue"}},
        {"zero seeks", true, true, {nullptr, nullptr, nullptr, "0"}, {"InvalidSectorPercentToTestValue", "InvalidNumberOfSeeksValue"}},
        {"only seeks set, percent wanted", true, false, {nullptr, nullptr, nullptr, "5"}, {"InvalidSectorPercentToTestValue"}},
        {"only percent set, seeks wanted", false, true, {nullptr, nullptr, "5"}, {"InvalidNumberOfSeeksValue"}},
        {"zero seeks, seeks wanted", false, true, {nullptr, nullptr, nullptr, "0"}, {"InvalidNumberOfSeeksValue"}},
    };
    // clang-format on
    for (const AmountCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll();
        apply(c.setting);
        try {
            CRange range(1000, 512, c.allowPercent, c.allowSeeks);
            ADD_FAILURE() << "accepted, jump " << range.GetJumpCount();
        } catch (const kivrlibdrive::InvalidRange& failure) {
            EXPECT_EQ(failure.getMessage().toUtf8(),
                      " Invalid Range: NumberOfSeeks or SectorPercentToTest parameter is not set");
        }
        std::vector<std::string> expected;
        for (const std::string& key : c.errors)
            expected.push_back("ERROR " + key + "@libDrive/Range");
        EXPECT_EQ(host.eventSummaries(), expected);
    }
}

TEST_F(RangeTest, SmallestUsablePercentage) {
    const struct {
        double percent;
        bool usable;
    } cases[] = {{1e-7, true}, {0.5e-7, false}, {0.0, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.percent);
        setAll();
        kivrlibdrive::g_SectorPercentToTest->setValue(quel5::Value::percent(c.percent));
        bool accepted = false;
        try {
            const CRange range(1000, 512, true, false);
            accepted = true;
            EXPECT_EQ(range.GetJumpCount(), 1u);
        } catch (const kivrlibdrive::InvalidRange&) {
        }
        EXPECT_EQ(accepted, c.usable);
    }
}

struct OrderCase {
    const char* name;
    uint64_t total;
    Setting setting;
    std::vector<std::string> warnings;
    const char* startWorkedOut;  // the detail line for the start
};

TEST_F(RangeTest, EndNotAboveStartIsAnInvalidRange) {
    // clang-format off
    const OrderCase cases[] = {
        {"equal", 1000, {"500", "500"}, {"193  EndRange is less than the start range"},
         "322  Calculated sector value is 500 the input string is 500"},
        {"end below start", 1000, {"600", "MIN+500"}, {"193  EndRange is less than the start range"},
         "322  Calculated sector value is 600 the input string is 600"},
        {"start beyond the capacity is kept",
         1000,
         {"MIN+2000"},
         {"319 Calculated Sector value is greater than the end sector or less than start sector "
          "qwValue: 2000",
          "193  EndRange is less than the start range"},
         "322  Calculated sector value is 2000 the input string is MIN+2000"},
        {"start at the capacity", 1000, {"1000"}, {"193  EndRange is less than the start range"},
         "322  Calculated sector value is 1000 the input string is 1000"},
        {"end at 0 percent of a tiny drive", 10, {nullptr, "9%"}, {"193  EndRange is less than the start range"},
         "322  Calculated sector value is 0 the input string is MIN"},
    };
    // clang-format on
    for (const OrderCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll();
        apply(c.setting);
        try {
            CRange range(c.total, 512, false, false);
            ADD_FAILURE() << "accepted " << range.GetStartRange() << ".." << range.GetEndRange();
        } catch (const kivrlibdrive::InvalidRange& failure) {
            EXPECT_EQ(failure.getMessage().toUtf8(),
                      " Invalid Range: The end range must be greater than start range");
        }
        EXPECT_EQ(logged("libDrive.Range", 4), c.warnings);
        EXPECT_TRUE(wasLogged("libDrive.Range", 1, c.startWorkedOut));
        EXPECT_TRUE(host.events().empty());
    }
}

struct LargeDriveCase {
    const char* name;
    uint64_t total;
    uint32_t bytesPerSector;
    const char* adjust;  // "AdjustForLargeDrives", null: unset
    const char* sizeGiB;
    const char* largeStart;
    const char* largeEnd;
    uint64_t start;
    uint64_t end;
};

TEST_F(RangeTest, LargeDrivesTakeTheirOwnTexts) {
    // 500 GiB is 1,048,576,000 sectors of 512 bytes and 131,072,000 sectors of 4096 bytes.
    // clang-format off
    const LargeDriveCase cases[] = {
        {"at the size", 1048576000, 512, "true", "500", "MIN+10", "MIN+20", 10, 20},
        {"one sector below", 1048575999, 512, "true", "500", "MIN+10", "MIN+20", 100, 200},
        {"4096-byte sectors at the size", 131072000, 4096, "true", "500", "MIN+10", "MIN+20", 10, 20},
        {"rule off", 2000000000, 512, "false", "500", "MIN+10", "MIN+20", 100, 200},
        {"rule unset", 2000000000, 512, nullptr, "500", "MIN+10", "MIN+20", 100, 200},
        {"only a start text", 2000000000, 512, "true", "500", "MIN+10", nullptr, 10, 200},
        {"only an end text", 2000000000, 512, "true", "500", nullptr, "MIN+150", 100, 150},
        {"end text the end pattern refuses", 2000000000, 512, "true", "500", nullptr, "MAX+5", 100, 2000000000},
    };
    // clang-format on
    for (const LargeDriveCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll();
        set("StartRange", "100");
        set("EndRange", "200");
        if (c.adjust) set("AdjustForLargeDrives", c.adjust);
        set("LargeDriveSize", c.sizeGiB);
        if (c.largeStart) set("LargeDriveStartRange", c.largeStart);
        if (c.largeEnd) set("LargeDriveEndRange", c.largeEnd);
        try {
            const CRange range(c.total, c.bytesPerSector, false, false);
            EXPECT_EQ(range.GetStartRange(), c.start);
            EXPECT_EQ(range.GetEndRange(), c.end);
        } catch (const kiv::Exception& failure) {
            ADD_FAILURE() << "threw: " << failure.getMessage().toUtf8();
        }
    }
}

TEST_F(RangeTest, LargeDriveTextsAreNotCheckedAgainstTheRangePatterns) {
    set("NumberOfSeeks", "10");
    set("AdjustForLargeDrives", "true");
    set("LargeDriveSize", "1");
    set("LargeDriveStartRange", "MAX+5");
    EXPECT_THROW(CRange(4194304, 512, true, true), kivrlibdrive::InvalidRange)
        << "a start beyond the capacity";
    EXPECT_TRUE(host.events().empty()) << "no InvalidRangeEntry for a large-drive text";

    // The evaluation refuses what it cannot take apart, however long.
    for (const std::string& text : {std::string("ten percent"), std::string(30000, '1')}) {
        setAll();
        set("AdjustForLargeDrives", "true");
        set("LargeDriveSize", "1");
        set("LargeDriveEndRange", text.c_str());
        EXPECT_THROW(CRange(4194304, 512, false, false), kiv::InternalError);
        EXPECT_TRUE(
            wasLogged("libDrive.Range", 4,
                      "261 CRange::GetRange Start or End Range input parameter is invalid"));
    }
}

struct OverflowCase {
    const char* name;
    const char* parameter;
    std::string text;
};

// On a 4 GiB drive of 512-byte sectors. Each text names an amount beyond 64 bits, which must
// not wrap to a small one (17179869185GB would otherwise be 1 GiB).
TEST_F(RangeTest, AmountsBeyondSixtyFourBitsAreAnInvalidRangeNotAWrap) {
    constexpr uint64_t kSectors = 8388608;
    // clang-format off
    const OverflowCase cases[] = {
        {"GB product just past 2^64", "EndRange", "17179869185GB"},
        {"GB product at 2^64", "EndRange", "17179869184GB"},
        {"MB product past 2^64", "EndRange", "18014398509481985MB"},
        {"KB product past 2^64", "EndRange", "MIN+18014398509481984KB"},
        {"number at 2^64", "EndRange", "18446744073709551616"},
        {"start number of 40 digits", "StartRange", std::string(40, '9')},
        {"large-drive percentage product", "LargeDriveEndRange", "3000000000000%"},
        {"large-drive sum past 2^64", "LargeDriveStartRange", "MAX+18446744073709551615"},
    };
    // clang-format on
    for (const OverflowCase& c : cases) {
        SCOPED_TRACE(c.name);
        setAll();
        set("AdjustForLargeDrives", "true");
        set("LargeDriveSize", "1");
        set(c.parameter, c.text.c_str());
        try {
            CRange range(kSectors, 512, false, false);
            ADD_FAILURE() << "accepted " << range.GetStartRange() << ".." << range.GetEndRange();
        } catch (const kivrlibdrive::InvalidRange& failure) {
            EXPECT_NE(failure.getMessage().toUtf8().find(c.text), std::string::npos)
                << failure.getMessage().toUtf8();
        }
        EXPECT_TRUE(logged("libDrive.Range", 4).empty()) << "no warning line is added";
        EXPECT_TRUE(host.events().empty());
    }
}

// The largest amounts that still fit 64 bits keep their old meaning: past the capacity, an end
// is pulled back to it.
TEST_F(RangeTest, AmountsThatStillFitSixtyFourBitsAreClampedAtTheEnd) {
    constexpr uint64_t kSectors = 8388608;
    for (const char* text : {"17179869183GB", "8589934592GB", "8589934591GB",
                             "18446744073709551615", "17592186044415MB"}) {
        SCOPED_TRACE(text);
        setAll();
        set("EndRange", text);
        const CRange range(kSectors, 512, false, false);
        EXPECT_EQ(range.GetEndRange(), kSectors);
        ASSERT_EQ(logged("libDrive.Range", 4).size(), 1u);
        EXPECT_EQ(logged("libDrive.Range", 4)[0].rfind("319 ", 0), 0u);
    }
}

// On a drive of close to 2^64 sectors the span, turned into a double, rounds up past itself;
// the amount to test must still not exceed the span, or the jump would be 0.
TEST_F(RangeTest, WholeRangeOfAHugeDriveIsTestedWithAJumpOfOne) {
    for (const uint64_t total : {std::numeric_limits<uint64_t>::max(), uint64_t{1} << 63}) {
        SCOPED_TRACE(total);
        setAll();
        set("StartRange", "711");
        const CRange range(total, 4096, false, false);
        // Within the double's rounding below the span, never above it.
        EXPECT_LE(range.GetSectorTotalToTest(), total - 711);
        EXPECT_GT(range.GetSectorTotalToTest(), total - 711 - 2048);
        EXPECT_EQ(range.GetJumpCount(), 1u);
    }
}

}  // namespace

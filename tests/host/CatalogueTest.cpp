// The catalogue holds texts only for keys in the library's vocabulary table, and every placeholder
// in a text names a variable that the library sets on that key, so no text can show an unfilled
// {Name}. That every key has a text is checked where the catalogue is compiled.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "cli/Catalogue.h"
#include "cli/Placeholders.h"

namespace {

using VariableTable = std::map<std::string, std::set<std::string>>;

// The variables the library sets on each event before raising it; keys not listed get none.
const VariableTable kEventVariables = {
    {"CURRENT_USAGE_VALUE", {"NumberOfUsesRemaining"}},
    {"TestFailedOnNonQualMedia", {"CustomerName"}},
    {"InvalidRangeEntry", {"PARAMETER_NAME"}},
    {"MAX_USAGE_LIMIT_REACHED", {"MediaName", "MaxNumberOfWrites"}},
    {"DATA_COMPARE_FAILED", {"TestSector"}},
    {"MAX_ERRORS_EXCEEDED", {"MaxError"}},
    {"UNABLE_TO_RESTORE_SECTOR", {"TestName", "TestSector", "EndSector"}},
    {"MSG_PATTERN_MISMATCH_ERROR", {"TestSector"}},
    {"NO_MEDIA_PRESENT", {"MediaName"}},
    {"DRIVE_SCSI_WRITE_FAILURE", {"WriteSector", "ScsiError1"}},
    {"DRIVE_ERROR_STARTING_OPTICAL_DRIVE", {"ScsiError1"}},
    {"ERROR_EJECTING_MEDIA", {"ScsiError"}},
    {"INCORRECT_MEDIA_INSERTED", {"MediaName1", "MediaName2"}},
    {"TEST_PASSED_WITH_ERRORS", {"percent", "threshold_percent"}},
    {"TEST_FAILED_THRESHOLD", {"threshold_percent"}},
    {"ERROR_FORMATTING_MEDIA", {"ScsiError"}},
    {"ERROR_ERASING_MEDIA", {"ScsiError"}},
    {"ERROR_SYNCHRONIZING_CACHE", {"ScsiError"}},
    {"ERROR_SETTING_SPEED", {"ScsiError"}},
    {"ERROR_SPEED_NOT_REACHED", {"RequestedSpeed", "ActualSpeed"}},
    {"ERROR_CLOSING_MEDIA", {"ScsiError"}},
    {"MEDIA_FULL_EVENT", {"MediaName"}},
    {"ERROR_DISC_NOT_EMPTY", {"MediaName"}},
    {"MEDIA_CLOSED_EVENT", {"MediaName"}},
    {"SUPPORTED_COMMAND_ERROR", {"ScsiError", "ScsiCommand"}},
    {"RW_TEST_READ_ERROR", {"ReadSector", "ScsiError1"}},
    {"LONG_WRITE_IN_PROGRESS_ERROR", {"WriteSector"}},
};

// The variables the library sets on each localized string before reading its text.
const VariableTable kStringVariables = {
    {"MEDIA_USAGE_LIMIT_REACHED", {"MediaName", "MaxNumberOfWrites"}},
    {"READ_SECTOR", {"ReadSector", "EndSector"}},
    {"READ_SECTOR_FUNNEL", {"ReadSector1", "ReadSector2", "EndSector"}},
    {"INSERT_MEDIA_WITH_DATA", {"MediaName"}},
    {"LOADING_MEDIA", {"MediaName"}},
    {"INCORRECT_MEDIA_INSERTED", {"MediaName1", "MediaName2"}},
    {"ReRunTestPromptUseApprovedMedia", {"MediaName"}},
    {"ReRunTestPrompt", {"MediaName"}},
    {"WRITING_BLOCK", {"WriteBlock", "TotalBlocks"}},
    {"CHECKING_BLOCK", {"WriteBlock", "TotalBlocks"}},
    {"ERASE_DISC_PROMPT", {"MediaName"}},
    {"MEDIA_NOT_QUALIFIED", {"MediaName", "CustomerName"}},
    {"TEST_WITH_QUALIFIED_MEDIA", {"MediaName", "CustomerName"}},
    {"DISC_NOT_EMPTY", {"MediaName"}},
    {"PRE_TEST_PROMPT", {"MediaName"}},
    {"RUNNING_AT_SPEED", {"WriteSpeedIndex", "WriteSpeed"}},
    {"MEDIA_CLOSED_MESSAGE", {"MediaName"}},
    {"MEDIA_FULL_STRING", {"MediaName"}},
    {"VERBOSE_INVALID_MEDIA_MESSAGE", {"InsertedMedia", "RequiredMedia"}},
    {"TEST_MEDIA", {"MediaName"}},
    {"MEDIA_READ_ONLY", {"MediaName"}},
};

const std::set<std::string> kLibraryEventKeys = {
#define LIBDRIVE_EVENT(key, member) key,
#include "libDrive/Vocabulary.inc"
};

const std::set<std::string> kLibraryStringKeys = {
#define LIBDRIVE_LOCALIZED_STRING(key, member) key,
#include "libDrive/Vocabulary.inc"
};

// Checks one kind of key: the library's keys against the catalogue and the variable table.
void checkCatalogue(const std::set<std::string>& libraryKeys,
                    std::span<const host::CatalogueEntry> catalogue,
                    std::string_view (*textOf)(std::string_view), const VariableTable& variables) {
    for (const std::string& key : libraryKeys) {
        SCOPED_TRACE(key);
        const auto known = variables.find(key);
        for (const std::string& name : host::placeholderNames(textOf(key))) {
            EXPECT_TRUE(known != variables.end() && known->second.count(name) == 1)
                << "{" << name << "} is never set on this key";
        }
    }
    std::set<std::string> catalogueKeys;
    for (const host::CatalogueEntry& entry : catalogue) {
        EXPECT_TRUE(catalogueKeys.insert(std::string(entry.key)).second)
            << entry.key << " appears twice";
        EXPECT_EQ(libraryKeys.count(std::string(entry.key)), 1u)
            << entry.key << " is not a key the library creates";
    }
    for (const auto& [key, names] : variables) {
        EXPECT_EQ(libraryKeys.count(key), 1u) << "variable table names unknown key " << key;
    }
}

TEST(CatalogueTest, EveryEventHasATextShowingOnlyItsVariables) {
    checkCatalogue(kLibraryEventKeys, host::eventCatalogue(), host::eventText, kEventVariables);
}

TEST(CatalogueTest, EveryLocalizedStringHasATextShowingOnlyItsVariables) {
    checkCatalogue(kLibraryStringKeys, host::stringCatalogue(), host::stringText, kStringVariables);
}

TEST(PlaceholdersTest, FillsNamedVariablesAndKeepsWhatItCannotFill) {
    const quel5::Variables variables = {
        {"ReadSector", quel5::Value(1234u)},
        {"EndSector", quel5::Value(static_cast<unsigned long long>(1ull << 40))},
        {"Name", quel5::Value("disc")},
        {"Pct", quel5::Value::percent(12.5)},
        {"Neg", quel5::Value(-3)},
    };
    const struct {
        std::string_view text;
        std::string expected;
    } cases[] = {
        {"Reading sector {ReadSector} of {EndSector}", "Reading sector 1234 of 1099511627776"},
        {"{ReadSector}", "1234"},
        {"{Name}{Name}", "discdisc"},
        {"at {Pct}% and {Neg}", "at 12.5% and -3"},
        {"missing {Nobody} stays", "missing {Nobody} stays"},
        {"open { brace", "open { brace"},
        {"unterminated {ReadSector", "unterminated {ReadSector"},
        {"empty {} name", "empty {} name"},
        {"no placeholders", "no placeholders"},
        {"", ""},
        {"{ReadSector}} tail", "1234} tail"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(host::fillPlaceholders(c.text, variables), c.expected);
    }
}

TEST(PlaceholdersTest, NamesComeInOrderWithRepeats) {
    EXPECT_EQ(host::placeholderNames("{A} and {B} then {A}"),
              (std::vector<std::string>{"A", "B", "A"}));
    EXPECT_EQ(host::placeholderNames("{A"), std::vector<std::string>{});
}

}  // namespace

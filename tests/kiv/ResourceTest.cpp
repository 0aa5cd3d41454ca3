#include <gtest/gtest.h>

#include "kiv/Resource.h"
#include "support/TempFile.h"

namespace {

using kiv::Resource;
using kiv::String;

const wchar_t kLibrary[] = L"libDrive";
const wchar_t kRerunKey[] = L"ReRunTestOnFailureCount.value";

class ResourceTest : public ::testing::Test {
protected:
    void SetUp() override { Resource::clear(); }
    void TearDown() override {
        Resource::clear();
        KIVLocale::setGlobal(KIVLocale(L"en_US"));
    }

    static String lookUp(const wchar_t* library, const wchar_t* key,
                         const KIVLocale& locale = KIVLocale::getGlobal()) {
        return Resource::getSettingOr(library, key, locale, L"<absent>");
    }
};

TEST_F(ResourceTest, SettingsTextLinesAndTheirMeaning) {
    const struct {
        const char* text;
        const wchar_t* library;
        const wchar_t* key;
        const wchar_t* expected;
    } cases[] = {
        {"libDrive.ReRunTestOnFailureCount.value = 3", kLibrary, kRerunKey, L"3"},
        {"  libDrive . ReRunTestOnFailureCount.value=7  \r\n", kLibrary, kRerunKey, L"7"},
        {"# libDrive.ReRunTestOnFailureCount.value = 3", kLibrary, kRerunKey, L"<absent>"},
        {"; libDrive.ReRunTestOnFailureCount.value = 3", kLibrary, kRerunKey, L"<absent>"},
        {"libDrive.Empty =", kLibrary, L"Empty", L""},
        {"libDrive.Text = a = b", kLibrary, L"Text", L"a = b"},
        {"other.ReRunTestOnFailureCount.value = 3", kLibrary, kRerunKey, L"<absent>"},
        {"libdrive.ReRunTestOnFailureCount.value = 3", kLibrary, kRerunKey, L"<absent>"},
        {"libDrive.Name = caf\xC3\xA9", kLibrary, L"Name", L"caf\u00E9"},
        {"[de_DE]\nlibDrive.ReRunTestOnFailureCount.value = 3", kLibrary, kRerunKey, L"<absent>"},
        {"[en_US]\nlibDrive.ReRunTestOnFailureCount.value = 4", kLibrary, kRerunKey, L"4"},
        {"[de_DE]\n[*]\nlibDrive.ReRunTestOnFailureCount.value = 5", kLibrary, kRerunKey, L"5"},
        {"libDrive.A = 1\nlibDrive.A = 2", kLibrary, L"A", L"2"},
    };
    for (const auto& c : cases) {
        Resource::clear();
        String error;
        ASSERT_TRUE(Resource::loadSettingsText(c.text, &error)) << c.text << ": " << error.toUtf8();
        EXPECT_EQ(lookUp(c.library, c.key).str(), c.expected) << c.text;
    }
}

TEST_F(ResourceTest, MalformedTextIsRejectedWholeWithTheLineNamed) {
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"libDrive.A = 1\nno equals sign", "line 2: no \"=\" between key and value"},
        {"libDrive = 1", "line 1: the name must be \"library.key\""},
        {".key = 1", "line 1: the name must be \"library.key\""},
        {"libDrive. = 1", "line 1: the name must be \"library.key\""},
        {"\n\n[en_US", "line 3: a section must end with \"]\""},
        {"[ ]", "line 1: a section needs a locale name or \"*\""},
    };
    for (const auto& c : cases) {
        Resource::clear();
        String error;
        EXPECT_FALSE(Resource::loadSettingsText(c.text, &error)) << c.text;
        EXPECT_EQ(error.toUtf8(), c.error);
        EXPECT_EQ(lookUp(kLibrary, L"A").str(), L"<absent>") << "nothing stored: " << c.text;
    }
}

TEST_F(ResourceTest, ValueForTheLocaleWinsOverTheCommonOne) {
    Resource::set(kLibrary, kRerunKey, L"1");
    Resource::set(kLibrary, kRerunKey, KIVLocale(L"de_DE"), L"2");
    EXPECT_EQ(lookUp(kLibrary, kRerunKey).str(), L"1");
    EXPECT_EQ(lookUp(kLibrary, kRerunKey, KIVLocale(L"de_DE")).str(), L"2");

    KIVLocale::setGlobal(KIVLocale(L"de_DE"));
    EXPECT_EQ(KIVLocale::getGlobal().getName().str(), L"de_DE");
    EXPECT_EQ(lookUp(kLibrary, kRerunKey).str(), L"2");
}

TEST_F(ResourceTest, GetSettingLeavesTheOutputAloneWhenAbsent) {
    String value = L"before";
    EXPECT_FALSE(Resource::getSetting(kLibrary, kRerunKey, KIVLocale::getGlobal(), value));
    EXPECT_EQ(value.str(), L"before");
    Resource::set(kLibrary, kRerunKey, L"");
    EXPECT_TRUE(Resource::getSetting(kLibrary, kRerunKey, KIVLocale::getGlobal(), value));
    EXPECT_EQ(value.str(), L"");
}

TEST_F(ResourceTest, SettingsFileIsLoadedAndAMissingOneReported) {
    const testsupport::TempFile file(
        "settings", "# host settings\r\nlibDrive.ReRunTestOnFailureCount.value = 2\r\n");
    String error;
    ASSERT_TRUE(Resource::loadSettingsFile(kiv::String(file.widePath()), &error)) << error.toUtf8();
    EXPECT_EQ(lookUp(kLibrary, kRerunKey).str(), L"2");

    EXPECT_FALSE(Resource::loadSettingsFile(L"missing.settings", &error));
    EXPECT_TRUE(error.contains(L"missing.settings"));
    EXPECT_EQ(lookUp(kLibrary, kRerunKey).str(), L"2") << "a failed load keeps what was there";
}

}  // namespace

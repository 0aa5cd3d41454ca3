#include <gtest/gtest.h>

#include "kiv/WindowsRegistry.h"
#include "kiv/WindowsSystem.h"

namespace {

using kiv::String;

const wchar_t kServices[] = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\";

class WindowsRegistryTest : public ::testing::Test {
protected:
    void TearDown() override {
        WindowsRegistry::clearValues();
        WindowsSystem::setWindowsDirectory(L"");
        WindowsSystem::setSystemDirectory(L"");
    }
};

TEST_F(WindowsRegistryTest, ValuesFromTheTableWithVariablesExpanded) {
    WindowsSystem::setWindowsDirectory(L"C:\\WINDOWS");
    WindowsRegistry::setValue(String(kServices) + L"kivflt", L"ImagePath",
                              L"\\SystemRoot\\System32\\drivers\\kivflt.sys");
    const struct {
        const wchar_t* stored;
        const wchar_t* expected;
    } cases[] = {
        {L"System32\\drivers\\a.sys", L"System32\\drivers\\a.sys"},
        {L"%SystemRoot%\\system32\\a.sys", L"C:\\WINDOWS\\system32\\a.sys"},
        {L"%windir%\\a.sys", L"C:\\WINDOWS\\a.sys"},
        {L"%KIV_NOT_A_VARIABLE%\\a.sys", L"%KIV_NOT_A_VARIABLE%\\a.sys"},
        {L"100%", L"100%"},
        {L"%%SystemRoot%", L"%C:\\WINDOWS"},
        {L"%KIV_NOT_A_VARIABLE%SystemRoot%", L"%KIV_NOT_A_VARIABLEC:\\WINDOWS"},
    };
    for (const auto& c : cases) {
        WindowsRegistry::setValue(L"HKLM\\Software\\kiv", L"Value", c.stored);
        String value;
        ASSERT_TRUE(WindowsRegistry::getExpandedStringValue(L"HKEY_LOCAL_MACHINE\\Software\\kiv",
                                                            L"Value", value));
        EXPECT_EQ(value.str(), c.expected) << String(c.stored).toUtf8();
    }
}

TEST_F(WindowsRegistryTest, KeysAndValueNamesIgnoreCaseAndTrailingBackslash) {
    WindowsRegistry::setValue(String(kServices) + L"KivFlt", L"ImagePath", L"x.sys");
    const struct {
        const wchar_t* key;
        const wchar_t* name;
        bool exists;
    } cases[] = {
        {L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\KivFlt", L"ImagePath", true},
        {L"hklm\\system\\currentcontrolset\\services\\kivflt\\", L"IMAGEPATH", true},
        {L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\KivFlt", L"Start", false},
        {L"HKEY_CURRENT_USER\\SYSTEM\\CurrentControlSet\\Services\\KivFlt", L"ImagePath", false},
        {L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\KivFl", L"ImagePath", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WindowsRegistry::valueExists(c.key, c.name), c.exists) << String(c.key).toUtf8();
        String value = L"untouched";
        EXPECT_EQ(WindowsRegistry::getExpandedStringValue(c.key, c.name, value), c.exists);
        EXPECT_EQ(value.str(), c.exists ? L"x.sys" : L"untouched");
    }
}

TEST_F(WindowsRegistryTest, UnknownRootThrowsTheRegistryException) {
    String value;
    for (const wchar_t* key : {L"HKEY_NOWHERE\\Software", L"", L"Software\\kiv"}) {
        EXPECT_THROW(WindowsRegistry::getExpandedStringValue(key, L"Value", value),
                     WindowsRegistryException);
        EXPECT_THROW(WindowsRegistry::valueExists(key, L"Value"), WindowsRegistryException);
    }
    try {
        WindowsRegistry::valueExists(L"HKEY_NOWHERE\\Software", L"Value");
    } catch (const kiv::Exception& failure) {
        EXPECT_TRUE(failure.getMessage().contains(L"HKEY_NOWHERE"));
    }
}

TEST_F(WindowsRegistryTest, DirectoriesSetByTheHostWinAndCanBeCleared) {
    WindowsSystem::setWindowsDirectory(L"D:\\Win");
    WindowsSystem::setSystemDirectory(L"D:\\Win\\system32");
    EXPECT_EQ(WindowsSystem::getWindowsDirectory().str(), L"D:\\Win");
    EXPECT_EQ(WindowsSystem::getSystemDirectory().str(), L"D:\\Win\\system32");
    WindowsSystem::setWindowsDirectory(L"");
    WindowsSystem::setSystemDirectory(L"");
    // Cleared: Windows answers for itself (under Wine as well); other platforms know none.
    EXPECT_EQ(WindowsSystem::getWindowsDirectory().isEmpty(), sizeof(wchar_t) != 2);
    EXPECT_EQ(WindowsSystem::getSystemDirectory().isEmpty(), sizeof(wchar_t) != 2);
}

}  // namespace

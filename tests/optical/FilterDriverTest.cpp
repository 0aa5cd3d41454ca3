// The filter-driver check over the registry table and a Windows directory of our own.
#include <filesystem>
#include <fstream>

#include "OpticalDriveFixture.h"
#include "kiv/WindowsRegistry.h"
#include "kiv/WindowsSystem.h"
#include "support/TempFile.h"

namespace optest {
namespace {

const kiv::String kServices = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\";

struct FilterCase {
    const char* name;
    std::vector<std::pair<const wchar_t*, std::vector<kiv::String>>> lists;  // property, drivers
    bool misconfigured;
};

TEST_F(OpticalDriveTest, FilterDriversMustBeWhereTheirServicesSay) {
    testsupport::TempDirectory root("filters");
    const kiv::String windows = kiv::String(root.path().wstring()).toLower() + L"\\windows";
    WindowsSystem::setWindowsDirectory(windows);
    // Installed: the file its ImagePath names exists (on Linux a name holding backslashes).
    WindowsRegistry::setValue(kServices + L"present", L"ImagePath",
                              L"System32\\drivers\\present.sys");
    const std::filesystem::path installed((windows + L"\\system32\\drivers\\present.sys").str());
    std::filesystem::create_directories(installed.parent_path());
    std::ofstream(installed).put('x');
    WindowsRegistry::setValue(kServices + L"removed", L"ImagePath",
                              L"System32\\drivers\\removed.sys");
    // A service that is no kernel file names nothing to look for.
    WindowsRegistry::setValue(kServices + L"program", L"ImagePath", L"C:\\Tools\\helper.exe");

    const FilterCase cases[] = {
        {"no lists", {}, false},
        {"empty list", {{L"DeviceUpperFilters", {}}}, false},
        {"installed", {{L"ClassLowerFilters", {L"present"}}}, false},
        {"file gone", {{L"DeviceLowerFilters", {L"present", L"removed"}}}, true},
        {"not a kernel file", {{L"ClassUpperFilters", {L"program"}}}, false},
        // Without an ImagePath the system's drivers folder is asked, which has no such file.
        {"no service", {{L"DeviceUpperFilters", {L"unheardof"}}}, true},
        {"a later list fails",
         {{L"DeviceUpperFilters", {L"present"}}, {L"ClassLowerFilters", {L"removed"}}},
         true},
    };
    for (const FilterCase& c : cases) {
        SCOPED_TRACE(c.name);
        quel5::DiagDevice described(QuelString(kiv::String::fromUtf8(kDevice)));
        for (const auto& [property, drivers] : c.lists) {
            described.setTextArray(property, drivers);
        }
        HostDrive checker(described);
        EXPECT_EQ(checker.isDriverFilterMisconfigured(), c.misconfigured);
    }
    EXPECT_EQ(logged(1).front(), "1918 Debug::isDriverPresent is chekcing for driver : present");
    WindowsRegistry::clearValues();
    WindowsSystem::setWindowsDirectory(L"");
}

}  // namespace
}  // namespace optest

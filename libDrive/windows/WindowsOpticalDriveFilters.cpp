// The filter-driver check: every upper and lower filter the device lists must be installed, or
// the drive's commands may be swallowed on the way.
#include "OpticalDriveLog.h"
#include "kiv/System.h"
#include "kiv/WindowsRegistry.h"
#include "kiv/WindowsSystem.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "os/Device.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kFilterProperties[] = {L"DeviceUpperFilters", L"DeviceLowerFilters",
                                            L"ClassUpperFilters", L"ClassLowerFilters"};
const wchar_t* const kServicesKey = L"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\";

// Adds to `paths` the files the service `driver` names in its ImagePath (those in system32 with
// a .sys name). False when the service has no ImagePath, the registry refuses, or the Windows
// directory is unknown.
bool addImagePaths(const kiv::String& driver, kiv::Array<kiv::String>& paths) {
    const kiv::String key = kiv::String(kServicesKey) + driver;
    try {
        if (!WindowsRegistry::valueExists(key, L"ImagePath")) {
            return false;
        }
        kiv::String imagePath;
        WindowsRegistry::getExpandedStringValue(key, L"ImagePath", imagePath);
        for (const kiv::String& token : imagePath.toLower().tokenize(L"")) {
            if (!token.contains(L"system32") || !token.contains(L".sys")) {
                continue;
            }
            const kiv::String windows = WindowsSystem::getWindowsDirectory();
            if (windows.isEmpty()) {
                return false;
            }
            paths.add(windows.toLower() + L"\\" + token);
        }
        return true;
    } catch (const WindowsRegistryException& failure) {
        optical::log(4, 1970,
                     kiv::String(L"Debug::getFilterDriverPath:: called getExpandedStringValue : ") +
                         failure.getMessage());
        return false;
    }
}

// True when every driver of `drivers` is installed where the system loads it from.
bool driversPresent(const kiv::Array<kiv::String>& drivers) {
    kiv::Array<kiv::String> paths;
    for (const kiv::String& driver : drivers) {
        if (addImagePaths(driver, paths)) {
            optical::log(1, 1918,
                         kiv::String(L"Debug::isDriverPresent is chekcing for driver : ") + driver);
            continue;
        }
        const std::wstring system = os::systemDirectory();
        if (system.empty()) {
            return false;
        }
        paths.add(kiv::String(system) + L"\\drivers\\" + driver + L".sys");
    }
    for (const kiv::String& path : paths) {
        if (!kiv::System::exists(path)) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool WindowsOpticalDrive::isDriverFilterMisconfigured() {
    for (const wchar_t* name : kFilterProperties) {
        const quel5::DeviceProperty* filters = device->property(name);
        if (filters == nullptr) {
            continue;
        }
        if (!driversPresent(QuelVornInterface::makeStringArrayFromValue(filters->value()))) {
            return true;
        }
    }
    return false;
}

}  // namespace kivrlibdrive

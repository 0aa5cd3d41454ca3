// WindowsRegistry: reading string values of the Windows registry by key path, such as
// "HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services\cdrom" (roots HKEY_LOCAL_MACHINE,
// HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_USERS, HKEY_CURRENT_CONFIG or their HKLM-style
// short names; key paths and value names are compared without regard to ASCII case).
//
// Values set with setValue() form a process-wide table that is consulted first on every
// platform; on Windows the real registry answers what the table does not hold, elsewhere
// nothing else exists. Safe to call from any thread.
#pragma once

#include "kiv/Exception.h"
#include "kiv/Export.h"
#include "kiv/String.h"

class KIV_API WindowsRegistryException : public kiv::Exception {
public:
    explicit WindowsRegistryException(const kiv::String& message);
    WindowsRegistryException(const WindowsRegistryException&) = default;
    WindowsRegistryException& operator=(const WindowsRegistryException&) = default;
    ~WindowsRegistryException() override;
};

class KIV_API WindowsRegistry {
public:
    // True when the key exists and holds a value of that name (of any type).
    // Throws WindowsRegistryException when the key path has no known root.
    static bool valueExists(const kiv::String& keyPath, const kiv::String& valueName);

    // Reads a string value and expands the "%NAME%" variables in it: SystemRoot and windir
    // from WindowsSystem::getWindowsDirectory() when that is known, others from the
    // environment; an unknown variable stays as written. True and `value` set on success;
    // false and `value` untouched when the key or the value does not exist.
    // Throws WindowsRegistryException when the key path has no known root, the value is not
    // a string, or the registry refuses the read.
    static bool getExpandedStringValue(const kiv::String& keyPath, const kiv::String& valueName,
                                       kiv::String& value);

    // Puts (keyPath, valueName) = `value` into the table, as a string value.
    static void setValue(const kiv::String& keyPath, const kiv::String& valueName,
                         const kiv::String& value);
    static void clearValues();  // empties the table
};

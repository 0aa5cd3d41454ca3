// WindowsSystem: where Windows keeps itself. On Windows the answers come from the system; on
// other platforms only from what the host (or a test) has set. A value set here wins on
// every platform.
#pragma once

#include "kiv/Export.h"
#include "kiv/String.h"

class KIV_API WindowsSystem {
public:
    // The Windows directory ("C:\Windows"); "" when unknown.
    static kiv::String getWindowsDirectory();
    // The system directory ("C:\Windows\system32"); "" when unknown.
    static kiv::String getSystemDirectory();

    // Make the getters answer `path`; "" removes the value set before.
    static void setWindowsDirectory(const kiv::String& path);
    static void setSystemDirectory(const kiv::String& path);
};

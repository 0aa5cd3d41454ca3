// Access to the system's registry, implemented per platform: RegistryAccess_windows.cpp reads
// the real registry, RegistryAccess_portable.cpp knows no keys at all.
#pragma once

#include "kiv/String.h"

namespace kiv::platform {

enum class RegistryRoot { LocalMachine, CurrentUser, ClassesRoot, Users, CurrentConfig };

enum class RegistryAnswer {
    Found,      // `value` holds the string
    Missing,    // no such key or value
    NotString,  // the value exists with another type
    Refused,    // the registry failed or denied the read; `value` holds the reason
};

// Reads (root\subKey, valueName). With `wantValue` false only existence is asked and a value
// of any type answers Found.
RegistryAnswer readRegistryValue(RegistryRoot root, const String& subKey, const String& valueName,
                                 bool wantValue, String& value);

}  // namespace kiv::platform

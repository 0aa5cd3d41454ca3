// Settings text as a host loads it from a file, then a lookup of the one setting the library
// reads.
#include <string>

#include "FuzzInput.h"
#include "kiv/CString.h"
#include "kiv/KIVLocale.h"
#include "kiv/Resource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kiv::Resource::clear();
    kiv::String error;
    const bool loaded = kiv::Resource::loadSettingsText(
        kiv::CString(std::string(fuzzinput::textOf(data, size))), &error);
    if (!loaded && error.isEmpty()) __builtin_trap();
    kiv::String value;
    kiv::Resource::getSetting(L"libDrive", L"ReRunTestOnFailureCount.value", KIVLocale(L"de_DE"),
                              value);
    return 0;
}

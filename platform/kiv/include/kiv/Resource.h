// kiv::Resource: settings of the libraries in the process, provided by the host. The host
// fills one process-wide store with set() or by loading settings text; libraries read it with
// getSetting(). All members are safe to call from any thread.
//
// Settings text, one setting per line:
//     # comment (also "; comment"); blank lines are ignored
//     [de_DE]                     settings below apply to that locale only
//     [*]                         settings below apply to every locale (the start state)
//     libDrive.ReRunTestOnFailureCount.value = 3
// The library name runs up to the first "."; the key is the rest up to "=", the value what
// follows it; all three are trimmed of blanks. Text is UTF-8.
//
// Lookup: a setting given for the requested locale wins over one given for every locale.
#pragma once

#include "kiv/CString.h"
#include "kiv/Export.h"
#include "kiv/KIVLocale.h"
#include "kiv/String.h"

namespace kiv {

class KIV_API Resource {
public:
    // Stores `value` for (library, key), for every locale.
    static void set(const String& library, const String& key, const String& value);
    // Stores `value` for (library, key) in `locale` only.
    static void set(const String& library, const String& key, const KIVLocale& locale,
                    const String& value);
    static void clear();  // forgets every setting

    // Reads settings text. All or nothing: on a malformed line nothing is stored, false is
    // returned and *error (when given) names the line ("line 3: no \"=\" ...").
    static bool loadSettingsText(const CString& text, String* error = nullptr);
    // Reads a settings file as loadSettingsText does; false also when it cannot be read.
    static bool loadSettingsFile(const String& path, String* error = nullptr);

    // The setting (library, key) as seen in `locale`. True and `value` set when it exists;
    // false and `value` untouched otherwise.
    static bool getSetting(const String& library, const String& key, const KIVLocale& locale,
                           String& value);
    // The setting's value, or `fallback` when it does not exist.
    static String getSettingOr(const String& library, const String& key, const KIVLocale& locale,
                               const String& fallback);
};

}  // namespace kiv

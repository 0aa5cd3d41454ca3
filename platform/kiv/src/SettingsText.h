// Parsing of settings text (format in kiv/Resource.h).
#pragma once

#include <string_view>
#include <vector>

#include "kiv/String.h"

namespace kiv {

struct SettingEntry {
    String locale;  // empty: every locale
    String library;
    String key;
    String value;
};

// Appends the entries of `text` to `entries`. False, with `error` naming the first malformed
// line, when a line is neither blank, a comment, a section nor a "library.key = value" line.
bool parseSettingsText(std::string_view text, std::vector<SettingEntry>& entries, String& error);

}  // namespace kiv

#include "kiv/Resource.h"

#include <map>
#include <mutex>
#include <tuple>
#include <vector>

#include "SettingsText.h"
#include "kiv/Stream.h"

namespace kiv {
namespace {

// Key: (locale, library, key); an empty locale stands for every locale.
using SettingKey = std::tuple<String, String, String>;

struct SettingStore {
    std::mutex mutex;
    std::map<SettingKey, String> values;
};

SettingStore& store() {
    static SettingStore instance;
    return instance;
}

void storeEntries(const std::vector<SettingEntry>& entries) {
    std::lock_guard<std::mutex> lock(store().mutex);
    for (const SettingEntry& entry : entries) {
        store().values[SettingKey(entry.locale, entry.library, entry.key)] = entry.value;
    }
}

}  // namespace

void Resource::set(const String& library, const String& key, const String& value) {
    storeEntries({SettingEntry{String(), library, key, value}});
}

void Resource::set(const String& library, const String& key, const KIVLocale& locale,
                   const String& value) {
    storeEntries({SettingEntry{locale.getName(), library, key, value}});
}

void Resource::clear() {
    std::lock_guard<std::mutex> lock(store().mutex);
    store().values.clear();
}

bool Resource::loadSettingsText(const CString& text, String* error) {
    std::vector<SettingEntry> entries;
    String reason;
    if (!parseSettingsText(text.str(), entries, reason)) {
        if (error) *error = reason;
        return false;
    }
    storeEntries(entries);
    return true;
}

bool Resource::loadSettingsFile(const String& path, String* error) {
    IFStream stream;
    if (!stream.openFile(path)) {
        if (error) *error = L"cannot open " + path;
        return false;
    }
    std::string text;
    char chunk[4096];
    std::size_t count = 0;
    while ((count = stream.read(chunk, sizeof chunk)) > 0) text.append(chunk, count);
    if (stream.hasFailed()) {
        if (error) *error = L"cannot read " + path;
        return false;
    }
    return loadSettingsText(CString(std::move(text)), error);
}

bool Resource::getSetting(const String& library, const String& key, const KIVLocale& locale,
                          String& value) {
    std::lock_guard<std::mutex> lock(store().mutex);
    const auto& values = store().values;
    auto found = values.find(SettingKey(locale.getName(), library, key));
    if (found == values.end()) found = values.find(SettingKey(String(), library, key));
    if (found == values.end()) return false;
    value = found->second;
    return true;
}

String Resource::getSettingOr(const String& library, const String& key, const KIVLocale& locale,
                              const String& fallback) {
    String value;
    return getSetting(library, key, locale, value) ? value : fallback;
}

}  // namespace kiv

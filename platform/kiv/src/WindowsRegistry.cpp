#include "kiv/WindowsRegistry.h"

#include <map>
#include <mutex>
#include <utility>

#include "PlatformFile.h"
#include "RegistryAccess.h"
#include "kiv/WindowsSystem.h"

using kiv::String;
using kiv::platform::RegistryAnswer;
using kiv::platform::RegistryRoot;

namespace {

struct ValueTable {
    std::mutex mutex;
    std::map<std::pair<String, String>, String> values;  // (lower-case key path, value name)
};

ValueTable& table() {
    static ValueTable instance;
    return instance;
}

struct KeyPath {
    RegistryRoot root;
    String subKey;
};

// Splits "HKEY_LOCAL_MACHINE\SYSTEM\..." into its root and the rest.
KeyPath parseKeyPath(const String& keyPath) {
    static const std::pair<const wchar_t*, RegistryRoot> kRoots[] = {
        {L"hkey_local_machine", RegistryRoot::LocalMachine},
        {L"hklm", RegistryRoot::LocalMachine},
        {L"hkey_current_user", RegistryRoot::CurrentUser},
        {L"hkcu", RegistryRoot::CurrentUser},
        {L"hkey_classes_root", RegistryRoot::ClassesRoot},
        {L"hkcr", RegistryRoot::ClassesRoot},
        {L"hkey_users", RegistryRoot::Users},
        {L"hku", RegistryRoot::Users},
        {L"hkey_current_config", RegistryRoot::CurrentConfig},
        {L"hkcc", RegistryRoot::CurrentConfig},
    };
    const std::size_t slash = keyPath.find(L"\\");
    const String rootName = keyPath.substring(0, slash).toLower();
    for (const auto& [name, root] : kRoots) {
        if (rootName == name) {
            return {root, slash == String::npos ? String() : keyPath.substring(slash + 1)};
        }
    }
    throw WindowsRegistryException(L"Unknown registry root in key " + keyPath);
}

// The table's own spelling of a key path: lower case, without trailing backslashes, short
// root names replaced by long ones.
std::pair<String, String> tableKey(const String& keyPath, const String& valueName) {
    static const wchar_t* const kLongNames[] = {L"hkey_local_machine", L"hkey_current_user",
                                                L"hkey_classes_root", L"hkey_users",
                                                L"hkey_current_config"};
    const KeyPath parsed = parseKeyPath(keyPath);
    String subKey = parsed.subKey.toLower();
    while (!subKey.isEmpty() && subKey[subKey.length() - 1] == L'\\') {
        subKey = subKey.substring(0, subKey.length() - 1);
    }
    return {String(kLongNames[static_cast<int>(parsed.root)]) + L"\\" + subKey,
            valueName.toLower()};
}

bool lookUpTable(const std::pair<String, String>& key, String& value) {
    std::lock_guard<std::mutex> lock(table().mutex);
    const auto found = table().values.find(key);
    if (found == table().values.end()) return false;
    value = found->second;
    return true;
}

String variableValue(const String& name, bool& known) {
    const String lower = name.toLower();
    if (lower == L"systemroot" || lower == L"windir") {
        const String directory = WindowsSystem::getWindowsDirectory();
        if (!directory.isEmpty()) {
            known = true;
            return directory;
        }
    }
    String value;
    known = kiv::platform::environmentVariable(name, value);
    return value;
}

String expandVariables(const String& text) {
    String result;
    std::size_t pos = 0;
    while (pos < text.length()) {
        const std::size_t open = text.find(L"%", pos);
        const std::size_t close = open == String::npos ? String::npos : text.find(L"%", open + 1);
        if (close == String::npos) break;
        result += text.substring(pos, open - pos);
        bool known = false;
        const String name = text.substring(open + 1, close - open - 1);
        const String value = name.isEmpty() ? String() : variableValue(name, known);
        if (known) {
            result += value;
            pos = close + 1;
        } else {
            // Keep the first "%" as written; the second may open the next variable.
            result += L"%" + name;
            pos = close;
        }
    }
    return result + text.substring(pos);
}

}  // namespace

WindowsRegistryException::WindowsRegistryException(const String& message)
    : kiv::Exception(message) {}

WindowsRegistryException::~WindowsRegistryException() = default;

bool WindowsRegistry::valueExists(const String& keyPath, const String& valueName) {
    String ignored;
    if (lookUpTable(tableKey(keyPath, valueName), ignored)) return true;
    const KeyPath parsed = parseKeyPath(keyPath);
    return kiv::platform::readRegistryValue(parsed.root, parsed.subKey, valueName, false,
                                            ignored) == RegistryAnswer::Found;
}

bool WindowsRegistry::getExpandedStringValue(const String& keyPath, const String& valueName,
                                             String& value) {
    String raw;
    if (!lookUpTable(tableKey(keyPath, valueName), raw)) {
        const KeyPath parsed = parseKeyPath(keyPath);
        switch (
            kiv::platform::readRegistryValue(parsed.root, parsed.subKey, valueName, true, raw)) {
            case RegistryAnswer::Found:
                break;
            case RegistryAnswer::Missing:
                return false;
            case RegistryAnswer::NotString:
                throw WindowsRegistryException(L"The value " + valueName + L" of " + keyPath +
                                               L" is not a string");
            case RegistryAnswer::Refused:
                throw WindowsRegistryException(L"Cannot read the value " + valueName + L" of " +
                                               keyPath + L": " + raw);
        }
    }
    value = expandVariables(raw);
    return true;
}

void WindowsRegistry::setValue(const String& keyPath, const String& valueName,
                               const String& value) {
    const auto key = tableKey(keyPath, valueName);
    std::lock_guard<std::mutex> lock(table().mutex);
    table().values[key] = value;
}

void WindowsRegistry::clearValues() {
    std::lock_guard<std::mutex> lock(table().mutex);
    table().values.clear();
}

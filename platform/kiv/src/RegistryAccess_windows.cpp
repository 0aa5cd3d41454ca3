#include <windows.h>

#include <vector>

#include "RegistryAccess.h"

namespace kiv::platform {
namespace {

HKEY handleOf(RegistryRoot root) {
    switch (root) {
        case RegistryRoot::LocalMachine:
            return HKEY_LOCAL_MACHINE;
        case RegistryRoot::CurrentUser:
            return HKEY_CURRENT_USER;
        case RegistryRoot::ClassesRoot:
            return HKEY_CLASSES_ROOT;
        case RegistryRoot::Users:
            return HKEY_USERS;
        case RegistryRoot::CurrentConfig:
            return HKEY_CURRENT_CONFIG;
    }
    return HKEY_LOCAL_MACHINE;
}

RegistryAnswer refused(LONG status, String& value) {
    value = L"registry error " + String::fromNumber(static_cast<uint64_t>(status));
    return RegistryAnswer::Refused;
}

}  // namespace

RegistryAnswer readRegistryValue(RegistryRoot root, const String& subKey, const String& valueName,
                                 bool wantValue, String& value) {
    HKEY key = nullptr;
    LONG status = RegOpenKeyExW(handleOf(root), subKey.c_str(), 0, KEY_QUERY_VALUE, &key);
    if (status == ERROR_FILE_NOT_FOUND) return RegistryAnswer::Missing;
    if (status != ERROR_SUCCESS) return refused(status, value);

    DWORD type = 0;
    DWORD bytes = 0;
    status = RegQueryValueExW(key, valueName.c_str(), nullptr, &type, nullptr, &bytes);
    RegistryAnswer answer = RegistryAnswer::Found;
    if (status == ERROR_FILE_NOT_FOUND) {
        answer = RegistryAnswer::Missing;
    } else if (status != ERROR_SUCCESS) {
        answer = refused(status, value);
    } else if (wantValue && type != REG_SZ && type != REG_EXPAND_SZ) {
        answer = RegistryAnswer::NotString;
    } else if (wantValue) {
        // The value may grow between the size query and the read: ERROR_MORE_DATA gives the
        // new size, and the read is tried again with it.
        std::vector<wchar_t> buffer;
        for (int attempt = 0; attempt < 4; ++attempt) {
            // One spare character: a stored string need not end in a terminator.
            buffer.assign(bytes / sizeof(wchar_t) + 1, L'\0');
            DWORD size = bytes;
            status = RegQueryValueExW(key, valueName.c_str(), nullptr, &type,
                                      reinterpret_cast<BYTE*>(buffer.data()), &size);
            if (status != ERROR_MORE_DATA) break;
            bytes = size;
        }
        if (status == ERROR_FILE_NOT_FOUND) {
            answer = RegistryAnswer::Missing;
        } else if (status != ERROR_SUCCESS) {
            answer = refused(status, value);
        } else if (type != REG_SZ && type != REG_EXPAND_SZ) {
            answer = RegistryAnswer::NotString;
        } else {
            value = String(std::wstring(buffer.data()));
        }
    }
    RegCloseKey(key);
    return answer;
}

}  // namespace kiv::platform

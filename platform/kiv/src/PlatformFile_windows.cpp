#include <windows.h>

#include <cstdio>
#include <vector>

#include "PlatformFile.h"

namespace kiv::platform {

std::FILE* openFile(const String& path, FileMode mode) {
    return _wfopen(path.c_str(), mode == FileMode::Read ? L"rb" : L"ab");
}

EntryKind examine(const String& path, uint64_t& size) {
    WIN32_FILE_ATTRIBUTE_DATA info{};
    if (path.isEmpty() || !GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &info)) {
        return EntryKind::Missing;
    }
    if (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) return EntryKind::Directory;
    if (info.dwFileAttributes & FILE_ATTRIBUTE_DEVICE) return EntryKind::Other;
    size = (static_cast<uint64_t>(info.nFileSizeHigh) << 32) | info.nFileSizeLow;
    return EntryKind::File;
}

wchar_t pathSeparator() { return L'\\'; }

bool environmentVariable(const String& name, String& value) {
    // A set but empty variable also answers 0; only ERROR_ENVVAR_NOT_FOUND means unset.
    std::vector<wchar_t> buffer(64);
    for (int attempt = 0; attempt < 4; ++attempt) {
        SetLastError(ERROR_SUCCESS);
        const DWORD length =
            GetEnvironmentVariableW(name.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return false;
        if (length < buffer.size()) {
            value = String(std::wstring(buffer.data(), length));
            return true;
        }
        buffer.assign(length, L'\0');  // too small: `length` counts the terminator too
    }
    return false;  // the variable kept growing while it was read
}

}  // namespace kiv::platform

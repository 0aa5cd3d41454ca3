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
    const DWORD needed = GetEnvironmentVariableW(name.c_str(), nullptr, 0);
    if (needed == 0) return false;
    std::vector<wchar_t> buffer(needed);
    const DWORD length = GetEnvironmentVariableW(name.c_str(), buffer.data(), needed);
    if (length == 0 || length >= needed) return false;
    value = String(std::wstring(buffer.data(), length));
    return true;
}

}  // namespace kiv::platform

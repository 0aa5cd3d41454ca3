#include "kiv/FileSystem.h"

#include "PlatformFile.h"

namespace kiv {

bool FileSystem::exists(const String& path) {
    uint64_t size = 0;
    return platform::examine(path, size) != platform::EntryKind::Missing;
}

bool FileSystem::isDirectory(const String& path) {
    uint64_t size = 0;
    return platform::examine(path, size) == platform::EntryKind::Directory;
}

bool FileSystem::getFileSize(const String& path, uint64_t& size) {
    uint64_t found = 0;
    if (platform::examine(path, found) != platform::EntryKind::File) return false;
    size = found;
    return true;
}

String FileSystem::joinPath(const String& directory, const String& name) {
    if (directory.isEmpty()) return name;
    const wchar_t last = directory[directory.length() - 1];
    if (last == L'/' || last == L'\\') return directory + name;
    return directory + String(std::wstring(1, platform::pathSeparator())) + name;
}

}  // namespace kiv

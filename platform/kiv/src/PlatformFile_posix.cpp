#include <sys/stat.h>

#include <cstdlib>

#include "PlatformFile.h"

namespace kiv::platform {

std::FILE* openFile(const String& path, FileMode mode) {
    return std::fopen(path.toUtf8().c_str(), mode == FileMode::Read ? "rb" : "ab");
}

EntryKind examine(const String& path, uint64_t& size) {
    struct stat info {};
    if (path.isEmpty() || ::stat(path.toUtf8().c_str(), &info) != 0) return EntryKind::Missing;
    if (S_ISDIR(info.st_mode)) return EntryKind::Directory;
    if (!S_ISREG(info.st_mode)) return EntryKind::Other;
    size = static_cast<uint64_t>(info.st_size);
    return EntryKind::File;
}

wchar_t pathSeparator() { return L'/'; }

bool environmentVariable(const String& name, String& value) {
    const char* text = std::getenv(name.toUtf8().c_str());
    if (!text) return false;
    value = String::fromUtf8(text);
    return true;
}

}  // namespace kiv::platform

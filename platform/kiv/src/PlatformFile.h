// The few file-system calls that differ between Windows (wide paths) and POSIX (UTF-8 paths).
// Implemented once per platform: PlatformFile_windows.cpp, PlatformFile_posix.cpp.
#pragma once

#include <cstdint>
#include <cstdio>

#include "kiv/String.h"

namespace kiv::platform {

enum class FileMode { Read, Append };

// Opens `path` in binary mode; nullptr when it cannot be opened. The caller fcloses it.
std::FILE* openFile(const String& path, FileMode mode);

enum class EntryKind { Missing, File, Directory, Other };

// What `path` names; `size` is set to the byte size when it names a file.
EntryKind examine(const String& path, uint64_t& size);

// The separator joinPath puts between two parts.
wchar_t pathSeparator();

// Reads an environment variable; false when it is not set.
bool environmentVariable(const String& name, String& value);

}  // namespace kiv::platform

// kiv::FileSystem: questions about files by path. Paths are kiv::String; on Windows they are
// passed to the wide Win32 calls, elsewhere as UTF-8.
#pragma once

#include <cstdint>

#include "kiv/Export.h"
#include "kiv/String.h"

namespace kiv {

class KIV_API FileSystem {
public:
    // True when `path` names an existing file, directory or device.
    static bool exists(const String& path);
    static bool isDirectory(const String& path);
    // Byte size of the regular file `path`. False (and `size` untouched) when `path` is
    // missing or is not a regular file.
    static bool getFileSize(const String& path, uint64_t& size);
    // `directory` + separator + `name`, the separator being "\" on Windows and "/" elsewhere.
    // No separator is added when `directory` is empty or already ends in "/" or "\".
    static String joinPath(const String& directory, const String& name);
};

}  // namespace kiv

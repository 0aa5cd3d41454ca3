// A filesystem path from a UTF-8 text, the same on Linux and Windows.
#pragma once

#include <filesystem>
#include <string>

namespace host {

inline std::filesystem::path pathFromUtf8(const std::string& text) {
    return std::filesystem::path(
        std::u8string(reinterpret_cast<const char8_t*>(text.data()), text.size()));
}

inline std::string utf8FromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(reinterpret_cast<const char*>(text.data()), text.size());
}

}  // namespace host

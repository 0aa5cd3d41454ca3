#include "cli/MapFont.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace host {
namespace {

constexpr const char* kDejaVuSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

bool isFile(const std::string& path) {
    std::error_code ignored;
    return !path.empty() && std::filesystem::is_regular_file(path, ignored);
}

// What `fc-match` names for sans-serif, or "" when fontconfig is not installed.
std::string fontconfigSans() {
    FILE* pipe = popen("fc-match -f '%{file}' sans-serif 2>/dev/null", "r");
    if (pipe == nullptr) return "";
    std::string path;
    char chunk[256];
    while (std::fgets(chunk, sizeof chunk, pipe) != nullptr) path += chunk;
    pclose(pipe);
    return path;
}

}  // namespace

std::string mapFontPath() {
    if (const char* chosen = std::getenv(kMapFontVariable); chosen != nullptr)
        return isFile(chosen) ? chosen : "";
    if (isFile(kDejaVuSans)) return kDejaVuSans;
    const std::string matched = fontconfigSans();
    return isFile(matched) ? matched : "";
}

}  // namespace host

#include "cli/PngMap.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace host {

bool namesPngFile(const std::string& path) {
    static constexpr std::string_view kSuffix = ".png";
    return path.size() >= kSuffix.size() &&
           std::equal(kSuffix.begin(), kSuffix.end(), path.end() - kSuffix.size(),
                      [](char wanted, char c) {
                          return wanted == std::tolower(static_cast<unsigned char>(c));
                      });
}

}  // namespace host

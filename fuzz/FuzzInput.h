// Helpers shared by the fuzz targets: turning the fuzzer's bytes into the texts an input takes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fuzzinput {

inline std::string_view textOf(const uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// `text` cut at every `separator`; an empty text gives no pieces.
inline std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    if (text.empty()) return pieces;
    std::size_t start = 0;
    for (;;) {
        const std::size_t found = text.find(separator, start);
        pieces.emplace_back(text.substr(start, found - start));
        if (found == std::string_view::npos) return pieces;
        start = found + 1;
    }
}

}  // namespace fuzzinput

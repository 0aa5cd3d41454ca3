// Helpers shared by the fuzz targets: turning the fuzzer's bytes into the texts an input takes,
// and the virtual clock the targets that run simulated drives use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "os/Clock.h"
#include "os/VirtualClock.h"

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

// Puts the process on a virtual clock, the first time only: simulated drives charge their
// costs in time, which must not be slept for real on every input.
inline void useVirtualClock() {
    static os::VirtualClock clock(1700000000000ull);
    static const bool installed = (os::installClock(&clock), true);
    (void)installed;
}

}  // namespace fuzzinput

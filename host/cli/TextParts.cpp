#include "cli/TextParts.h"

namespace host {

std::vector<std::string_view> partsOf(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t found = text.find(separator, start);
        parts.push_back(text.substr(start, found - start));
        if (found == std::string_view::npos) return parts;
        start = found + 1;
    }
}

}  // namespace host

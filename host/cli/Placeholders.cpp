#include "cli/Placeholders.h"

namespace host {
namespace {

const quel5::Value* findVariable(const quel5::Variables& variables, std::string_view name) {
    for (const auto& [variableName, value] : variables) {
        if (variableName.toUtf8() == name) return &value;
    }
    return nullptr;
}

}  // namespace

std::string fillPlaceholders(std::string_view text, const quel5::Variables& variables) {
    std::string filled;
    filled.reserve(text.size());
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t open = text.find('{', pos);
        const std::size_t close = open == std::string_view::npos ? open : text.find('}', open + 1);
        if (close == std::string_view::npos) {
            filled.append(text.substr(pos));
            break;
        }
        filled.append(text.substr(pos, open - pos));
        const std::string_view name = text.substr(open + 1, close - open - 1);
        if (const quel5::Value* value = findVariable(variables, name)) {
            filled.append(value->toString().toUtf8());
        } else {
            filled.append(text.substr(open, close - open + 1));
        }
        pos = close + 1;
    }
    return filled;
}

std::vector<std::string> placeholderNames(std::string_view text) {
    std::vector<std::string> names;
    std::size_t pos = 0;
    while (true) {
        const std::size_t open = text.find('{', pos);
        if (open == std::string_view::npos) break;
        const std::size_t close = text.find('}', open + 1);
        if (close == std::string_view::npos) break;
        names.emplace_back(text.substr(open + 1, close - open - 1));
        pos = close + 1;
    }
    return names;
}

}  // namespace host

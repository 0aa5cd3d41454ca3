#include "SettingsText.h"

namespace kiv {
namespace {

std::string_view trimmed(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

String lineError(std::size_t number, const wchar_t* reason) {
    return L"line " + String::fromNumber(number) + L": " + reason;
}

}  // namespace

bool parseSettingsText(std::string_view text, std::vector<SettingEntry>& entries, String& error) {
    std::vector<SettingEntry> found;
    String locale;
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        ++number;
        if (line.empty() || line.front() == '#' || line.front() == ';') continue;
        if (line.front() == '[') {
            if (line.back() != ']') {
                error = lineError(number, L"a section must end with \"]\"");
                return false;
            }
            const std::string_view name = trimmed(line.substr(1, line.size() - 2));
            if (name.empty()) {
                error = lineError(number, L"a section needs a locale name or \"*\"");
                return false;
            }
            locale = name == "*" ? String() : String::fromUtf8(name);
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            error = lineError(number, L"no \"=\" between key and value");
            return false;
        }
        const std::string_view name = trimmed(line.substr(0, equals));
        const std::size_t dot = name.find('.');
        if (dot == std::string_view::npos || dot == 0 || trimmed(name.substr(dot + 1)).empty()) {
            error = lineError(number, L"the name must be \"library.key\"");
            return false;
        }
        found.push_back(SettingEntry{locale, String::fromUtf8(trimmed(name.substr(0, dot))),
                                     String::fromUtf8(trimmed(name.substr(dot + 1))),
                                     String::fromUtf8(trimmed(line.substr(equals + 1)))});
    }
    entries.insert(entries.end(), found.begin(), found.end());
    return true;
}

}  // namespace kiv

#include "sim/recorded/RecordedAnswers.h"

#include <cctype>
#include <charconv>
#include <optional>

namespace sim::recorded {
namespace {

constexpr std::string_view kSectionMark = "######## ";
constexpr std::string_view kDataIndent = "    ";

std::optional<uint8_t> hexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
    const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (lower >= 'a' && lower <= 'f') return static_cast<uint8_t>(lower - 'a' + 10);
    return std::nullopt;
}

// Hex digits in pairs, blanks between pairs allowed; nothing when anything else is there.
std::optional<std::vector<uint8_t>> hexBytes(std::string_view text) {
    std::vector<uint8_t> bytes;
    size_t i = 0;
    while (i < text.size()) {
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        if (i + 1 >= text.size()) return std::nullopt;
        const auto high = hexDigit(text[i]);
        const auto low = hexDigit(text[i + 1]);
        if (!high || !low) return std::nullopt;
        bytes.push_back(static_cast<uint8_t>(*high << 4 | *low));
        i += 2;
    }
    return bytes;
}

// The text after "key=" up to the next blank; empty when the key is absent.
std::string_view field(std::string_view line, std::string_view key) {
    const size_t at = line.find(key);
    if (at == std::string_view::npos) return {};
    const size_t start = at + key.size();
    const size_t end = line.find(' ', start);
    return line.substr(start, end == std::string_view::npos ? line.size() - start : end - start);
}

template <typename T>
T number(std::string_view text, int base) {
    T value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, base);
    return value;
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

std::optional<RecordedAnswer> commandLine(std::string_view line) {
    const size_t cdbAt = line.find(" cdb=");
    if (cdbAt == std::string_view::npos) return std::nullopt;
    const auto cdb = hexBytes(field(line, " cdb="));
    if (!cdb || cdb->empty()) return std::nullopt;
    RecordedAnswer answer;
    answer.label = std::string(trimmed(line.substr(0, cdbAt)));
    answer.cdb = *cdb;
    answer.scsiStatus = number<uint8_t>(field(line, " st="), 16);
    answer.hostStatus = number<uint8_t>(field(line, " host="), 16);
    answer.driverStatus = number<uint8_t>(field(line, " drv="), 16);
    answer.residual = number<uint32_t>(field(line, " resid="), 10);
    const std::string_view sense = field(line, " SENSE ");  // key/ASC/ASCQ in hex
    if (sense.size() == 7 && sense[1] == '/' && sense[4] == '/') {
        answer.hasSense = true;
        answer.senseKey = number<uint8_t>(sense.substr(0, 1), 16);
        answer.asc = number<uint8_t>(sense.substr(2, 2), 16);
        answer.ascq = number<uint8_t>(sense.substr(5, 2), 16);
    }
    return answer;
}

}  // namespace

std::vector<RecordedDevice> parseRecordedAnswers(std::string_view text) {
    std::vector<RecordedDevice> devices;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);

        if (line.substr(0, kSectionMark.size()) == kSectionMark) {
            const size_t slash = line.rfind('/');
            devices.push_back({std::string(line.substr(slash + 1)), {}});
        } else if (devices.empty()) {
            continue;
        } else if (line.substr(0, kDataIndent.size()) == kDataIndent) {
            auto& answers = devices.back().answers;
            const auto bytes = hexBytes(line.substr(kDataIndent.size()));
            if (!answers.empty() && bytes) {
                answers.back().data.insert(answers.back().data.end(), bytes->begin(), bytes->end());
            }
        } else if (auto answer = commandLine(line)) {
            devices.back().answers.push_back(std::move(*answer));
        }
    }
    return devices;
}

}  // namespace sim::recorded

#include "cli/Json.h"

#include <cmath>
#include <cstdio>

namespace host {
namespace {

// Length of the valid UTF-8 sequence starting at text[pos], or 0 when it is not one.
std::size_t utf8SequenceLength(std::string_view text, std::size_t pos) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(pos);
    std::size_t length = 0;
    uint32_t codePoint = 0;
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        codePoint = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        codePoint = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        codePoint = lead & 0x07;
    } else {
        return 0;
    }
    if (pos + length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(pos + i) & 0xC0) != 0x80) return 0;
        codePoint = (codePoint << 6) | (byte(pos + i) & 0x3F);
    }
    // Reject overlong forms, surrogates and code points past U+10FFFF.
    const bool overlong =
        (length == 3 && codePoint < 0x800) || (length == 4 && codePoint < 0x10000);
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (overlong || surrogate || codePoint > 0x10FFFF) return 0;
    return length;
}

std::string jsonDouble(double value) {
    if (!std::isfinite(value)) return "null";
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

}  // namespace

std::string jsonString(std::string_view utf8) {
    std::string out = "\"";
    std::size_t pos = 0;
    while (pos < utf8.size()) {
        const unsigned char c = static_cast<unsigned char>(utf8[pos]);
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\b':
                out += "\\b";
                break;
            case '\f':
                out += "\\f";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c < 0x20 || c == 0x7F) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
                    out += escaped;
                } else {
                    const std::size_t length = utf8SequenceLength(utf8, pos);
                    if (length == 0) {
                        out += "\\ufffd";
                    } else {
                        out.append(utf8.substr(pos, length));
                        pos += length;
                        continue;
                    }
                }
        }
        ++pos;
    }
    out += '"';
    return out;
}

std::string jsonValue(const quel5::Value& value) {
    using Kind = quel5::DataType::Kind;
    switch (value.kind()) {
        case Kind::NONE:
            return "null";
        case Kind::UINT32:
        case Kind::UINT64:
            return std::to_string(value.valueUint64());
        case Kind::INT64:
            return std::to_string(static_cast<int64_t>(value.valueUint64()));
        case Kind::PERCENT:
            return jsonDouble(value.valuePercent());
        case Kind::BOOLEAN:
            return value.valueBool() ? "true" : "false";
        case Kind::STRING:
            return jsonString(value.valueString().toUtf8());
        case Kind::UINT32_ARRAY: {
            std::string out = "[";
            for (uint32_t i = 0; i < value.Uint32ArraySize(); ++i) {
                if (i > 0) out += ',';
                out += std::to_string(value.getUint32InArray(i));
            }
            return out + "]";
        }
        case Kind::STRING_ARRAY: {
            std::string out = "[";
            for (uint32_t i = 0; i < value.stringArraySize(); ++i) {
                if (i > 0) out += ',';
                out += jsonString(value.getStringInArray(i).toUtf8());
            }
            return out + "]";
        }
    }
    return "null";
}

std::string jsonVariables(const quel5::Variables& variables) {
    JsonObject object;
    for (const auto& [name, value] : variables) object.raw(name.toUtf8(), jsonValue(value));
    return object.str();
}

JsonObject JsonObject::record(std::string_view type) {
    JsonObject object;
    object.number("schema", kSchema).text("type", type);
    return object;
}

JsonObject& JsonObject::text(std::string_view name, std::string_view utf8) {
    return field(name, jsonString(utf8));
}

JsonObject& JsonObject::decimal(std::string_view name, double value) {
    return field(name, jsonDouble(value));
}

JsonObject& JsonObject::number(std::string_view name, uint64_t value) {
    return field(name, std::to_string(value));
}

JsonObject& JsonObject::signedNumber(std::string_view name, int64_t value) {
    return field(name, std::to_string(value));
}

JsonObject& JsonObject::boolean(std::string_view name, bool value) {
    return field(name, value ? "true" : "false");
}

JsonObject& JsonObject::raw(std::string_view name, std::string_view json) {
    return field(name, json);
}

JsonObject& JsonObject::field(std::string_view name, std::string_view json) {
    if (!body_.empty()) body_ += ',';
    body_ += jsonString(name);
    body_ += ':';
    body_ += json;
    return *this;
}

}  // namespace host

#include "Utf8.h"

namespace kiv::utf8 {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }
bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// Decodes the code point starting at `pos` and moves `pos` past it. Overlong forms,
// surrogates and truncated sequences consume only their lead byte and yield U+FFFD, so the
// bytes after a broken sequence are decoded on their own.
char32_t decodeOne(std::string_view text, std::size_t& pos) {
    const auto lead = static_cast<unsigned char>(text[pos]);
    if (lead < 0x80) {
        ++pos;
        return lead;
    }
    int extra = 0;
    char32_t value = 0;
    char32_t minimum = 0;
    if ((lead & 0xE0) == 0xC0) {
        extra = 1, value = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2, value = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3, value = lead & 0x07, minimum = 0x10000;
    } else {
        ++pos;
        return kReplacement;
    }
    if (pos + extra >= text.size()) {
        ++pos;
        return kReplacement;
    }
    for (int i = 1; i <= extra; ++i) {
        const auto byte = static_cast<unsigned char>(text[pos + i]);
        if (!isContinuation(byte)) {
            ++pos;
            return kReplacement;
        }
        value = (value << 6) | (byte & 0x3F);
    }
    if (value < minimum || value > 0x10FFFF || isSurrogate(value)) {
        ++pos;
        return kReplacement;
    }
    pos += extra + 1;
    return value;
}

void encodeOne(char32_t c, std::string& out) {
    if (c > 0x10FFFF || isSurrogate(c)) c = kReplacement;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

}  // namespace

std::u32string toUtf32(std::string_view utf8) {
    std::u32string out;
    out.reserve(utf8.size());
    std::size_t pos = 0;
    while (pos < utf8.size()) out += decodeOne(utf8, pos);
    return out;
}

std::u16string toUtf16(std::string_view utf8) {
    std::u16string out;
    out.reserve(utf8.size());
    std::size_t pos = 0;
    while (pos < utf8.size()) {
        const char32_t c = decodeOne(utf8, pos);
        if (c < 0x10000) {
            out += static_cast<char16_t>(c);
        } else {
            const char32_t offset = c - 0x10000;
            out += static_cast<char16_t>(0xD800 + (offset >> 10));
            out += static_cast<char16_t>(0xDC00 + (offset & 0x3FF));
        }
    }
    return out;
}

std::string fromUtf32(std::u32string_view utf32) {
    std::string out;
    out.reserve(utf32.size());
    for (char32_t c : utf32) encodeOne(c, out);
    return out;
}

std::string fromUtf16(std::u16string_view utf16) {
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        const char16_t unit = utf16[i];
        const bool high = unit >= 0xD800 && unit <= 0xDBFF;
        if (high && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 && utf16[i + 1] <= 0xDFFF) {
            const char32_t c =
                0x10000 + ((char32_t(unit) - 0xD800) << 10) + (char32_t(utf16[i + 1]) - 0xDC00);
            encodeOne(c, out);
            ++i;
        } else {
            encodeOne(unit, out);  // a lone surrogate becomes U+FFFD there
        }
    }
    return out;
}

}  // namespace kiv::utf8

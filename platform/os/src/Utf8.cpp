#include "os/Utf8.h"

#include <cstdint>

namespace os {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
// A byte that is not part of valid UTF-8 is kept as the lone low surrogate U+DC00 + byte, so
// that a file name of any bytes survives a trip through a wide string and opens.
constexpr char32_t kEscapedByteFirst = 0xDC80;
constexpr char32_t kEscapedByteLast = 0xDCFF;

void appendUtf8(std::string& out, char32_t c) {
    if (c >= kEscapedByteFirst && c <= kEscapedByteLast) {
        out += static_cast<char>(c - 0xDC00);
        return;
    }
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
        c = kReplacement;
    }
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

void appendWide(std::wstring& out, char32_t c) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (c >= 0x10000) {
            c -= 0x10000;
            out += static_cast<wchar_t>(0xD800 + (c >> 10));
            out += static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
            return;
        }
    }
    out += static_cast<wchar_t>(c);
}

// Decodes one UTF-8 sequence at text[i], advancing i; the first byte of a malformed sequence
// yields its escape, and decoding goes on after it.
char32_t decodeUtf8(const std::string& text, size_t& i) {
    const size_t start = i;
    const auto lead = static_cast<uint8_t>(text[i++]);
    const auto malformed = [&] {
        i = start + 1;
        return static_cast<char32_t>(0xDC00 + lead);
    };
    int continuation = 0;
    char32_t c = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        continuation = 1, c = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        continuation = 2, c = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        continuation = 3, c = lead & 0x07, minimum = 0x10000;
    } else {
        return malformed();
    }
    for (int k = 0; k < continuation; ++k) {
        if (i >= text.size() || (static_cast<uint8_t>(text[i]) & 0xC0) != 0x80) {
            return malformed();
        }
        c = (c << 6) | (static_cast<uint8_t>(text[i++]) & 0x3F);
    }
    if (c < minimum || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
        return malformed();
    }
    return c;
}

}  // namespace

std::string toUtf8(const std::wstring& text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = static_cast<char32_t>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            c &= 0xFFFF;
            const bool high = c >= 0xD800 && c <= 0xDBFF;
            if (high && i + 1 < text.size()) {
                const char32_t low = static_cast<char32_t>(text[i + 1]) & 0xFFFF;
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                    ++i;
                }
            }
        }
        appendUtf8(out, c);
    }
    return out;
}

std::wstring fromUtf8(const std::string& text) {
    std::wstring out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        appendWide(out, decodeUtf8(text, i));
    }
    return out;
}

}  // namespace os

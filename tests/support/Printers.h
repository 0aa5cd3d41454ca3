// GoogleTest printers for the framework's value types, so that a failed EXPECT_EQ shows
// "UINT32 5" or "\"text\"" instead of raw bytes. Include it in any test comparing them.
#pragma once

#include <ostream>

#include "quel5/Value.h"

inline void PrintTo(const QuelString& text, std::ostream* out) {
    *out << '"' << text.toUtf8() << '"';
}

namespace quel5 {

inline void PrintTo(const Value& value, std::ostream* out) {
    static const char* const kinds[] = {"NONE",   "UINT32",       "UINT64",
                                        "INT64",  "PERCENT",      "BOOLEAN",
                                        "STRING", "UINT32_ARRAY", "STRING_ARRAY"};
    *out << kinds[static_cast<int>(value.kind())] << " \"" << value.toString().toUtf8() << '"';
}

}  // namespace quel5

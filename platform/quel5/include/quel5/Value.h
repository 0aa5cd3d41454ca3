// quel5::Value: one typed value of a parameter, an event or string variable, or a device
// property. Integers are kept at 64 bits; readers ask for the form they need.
#pragma once

#include <cstdint>
#include <vector>

#include "kiv/Array.h"
#include "kiv/String.h"
#include "quel5/DataType.h"
#include "quel5/Export.h"
#include "quel5/QuelString.h"

namespace quel5 {

class QUEL5_API Value {
public:
    Value() = default;               // kind NONE
    Value(int v);                    // NOLINT: integers convert implicitly
    Value(unsigned int v);           // NOLINT
    Value(long v);                   // NOLINT
    Value(unsigned long v);          // NOLINT
    Value(long long v);              // NOLINT
    Value(unsigned long long v);     // NOLINT
    Value(const QuelString& text);   // NOLINT
    Value(const kiv::String& text);  // NOLINT
    Value(const wchar_t* text);      // NOLINT
    Value(const char* utf8);         // NOLINT

    static Value percent(double percent);  // 0..100
    static Value boolean(bool value);
    static Value uint32Array(std::vector<uint32_t> items);
    static Value stringArray(std::vector<kiv::String> items);

    DataType::Kind kind() const { return kind_; }

    // Kinds: int, long, long long give INT64; unsigned types of 32 bits give UINT32, wider ones
    // UINT64 (so `unsigned long` is UINT32 on Windows and UINT64 on Linux); texts give STRING.
    //
    // Readers. A reader for another kind converts where it makes sense and otherwise answers 0,
    // false or "":
    //  - valueUint64: integers as stored (a negative INT64 in two's complement), a boolean as 0/1,
    //    a percent truncated toward zero (negative gives 0), a text parsed as a decimal number
    //    (blanks around it allowed; "-1" gives 2^64 - 1, "12.7" gives 12, "abc" gives 0).
    //  - valueUint32: the low 32 bits of valueUint64 (a UINT64 of 2^32 + 5 gives 5).
    //  - valuePercent: the number as a double (INT64 signed), a text parsed as a decimal number.
    //  - valueBool: non-zero numbers are true; a text is true when it is "true" in any case or a
    //    non-zero number.
    //  - valueString: the same text as toString().
    // Array readers answer only for their own kind; other kinds have size 0.
    uint32_t valueUint32() const;
    uint64_t valueUint64() const;
    double valuePercent() const;
    bool valueBool() const;
    QuelString valueString() const;

    uint32_t Uint32ArraySize() const;
    uint32_t getUint32InArray(uint32_t index) const;  // 0 past the end
    uint32_t stringArraySize() const;
    QuelString getStringInArray(uint32_t index) const;  // "" past the end

    // Human-readable text: integers in decimal (INT64 signed), percents in their shortest
    // decimal form ("50", "12.5"), booleans "true"/"false", arrays comma-separated, NONE "".
    kiv::String toString() const;

    // Integers of any of the three integer kinds are equal when they are the same number;
    // other values are equal when kind and content are equal.
    bool operator==(const Value& other) const;
    bool operator!=(const Value& other) const { return !(*this == other); }

private:
    DataType::Kind kind_ = DataType::Kind::NONE;
    uint64_t bits_ = 0;  // UINT64/INT64 payload (two's complement for INT64), BOOLEAN as 0/1
    double percent_ = 0.0;
    kiv::String text_;
    std::vector<uint32_t> numbers_;
    std::vector<kiv::String> texts_;
};

}  // namespace quel5

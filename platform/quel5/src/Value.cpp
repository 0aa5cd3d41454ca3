#include "quel5/Value.h"

#include <cmath>

#include "TextNumber.h"

namespace quel5 {

namespace {

using Kind = DataType::Kind;

bool isInteger(Kind kind) {
    return kind == Kind::UINT32 || kind == Kind::UINT64 || kind == Kind::INT64;
}

// Unsigned integers that fit in 32 bits are UINT32 values; wider ones UINT64. The width of
// `unsigned long` differs between Windows and Linux, so it is decided by size.
template <typename T>
Kind unsignedKind() {
    return sizeof(T) <= sizeof(uint32_t) ? Kind::UINT32 : Kind::UINT64;
}

// A number read from text: integers keep every bit, other decimals are truncated toward zero.
uint64_t integerFromText(const std::wstring& text) {
    if (const auto value = detail::parseSigned(text)) return static_cast<uint64_t>(*value);
    if (const auto value = detail::parseUnsigned(text)) return *value;
    if (const auto value = detail::parseDecimal(text)) {
        if (*value <= 0.0 || std::isnan(*value)) return 0;
        if (*value >= 18446744073709551615.0) return UINT64_MAX;
        return static_cast<uint64_t>(*value);
    }
    return 0;
}

uint64_t integerFromPercent(double percent) {
    if (!(percent > 0.0)) return 0;
    if (percent >= 18446744073709551615.0) return UINT64_MAX;
    return static_cast<uint64_t>(percent);
}

kiv::String joined(const std::vector<kiv::String>& items) {
    std::wstring text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0) text += L',';
        text += items[i].str();
    }
    return kiv::String(text);
}

}  // namespace

Value::Value(int v) : kind_(Kind::INT64), bits_(static_cast<uint64_t>(static_cast<int64_t>(v))) {}
Value::Value(unsigned int v) : kind_(unsignedKind<unsigned int>()), bits_(v) {}
Value::Value(long v) : kind_(Kind::INT64), bits_(static_cast<uint64_t>(static_cast<int64_t>(v))) {}
Value::Value(unsigned long v) : kind_(unsignedKind<unsigned long>()), bits_(v) {}
Value::Value(long long v) : kind_(Kind::INT64), bits_(static_cast<uint64_t>(v)) {}
Value::Value(unsigned long long v) : kind_(unsignedKind<unsigned long long>()), bits_(v) {}
Value::Value(const QuelString& text) : kind_(Kind::STRING), text_(text.kivString()) {}
Value::Value(const kiv::String& text) : kind_(Kind::STRING), text_(text) {}
Value::Value(const wchar_t* text) : kind_(Kind::STRING), text_(text) {}
Value::Value(const char* utf8)
    : kind_(Kind::STRING), text_(kiv::String::fromUtf8(utf8 ? utf8 : "")) {}

Value Value::percent(double percent) {
    Value value;
    value.kind_ = Kind::PERCENT;
    value.percent_ = percent;
    return value;
}

Value Value::boolean(bool flag) {
    Value value;
    value.kind_ = Kind::BOOLEAN;
    value.bits_ = flag ? 1 : 0;
    return value;
}

Value Value::uint32Array(std::vector<uint32_t> items) {
    Value value;
    value.kind_ = Kind::UINT32_ARRAY;
    value.numbers_ = std::move(items);
    return value;
}

Value Value::stringArray(std::vector<kiv::String> items) {
    Value value;
    value.kind_ = Kind::STRING_ARRAY;
    value.texts_ = std::move(items);
    return value;
}

uint32_t Value::valueUint32() const { return static_cast<uint32_t>(valueUint64()); }

uint64_t Value::valueUint64() const {
    switch (kind_) {
        case Kind::UINT32:
        case Kind::UINT64:
        case Kind::INT64:
        case Kind::BOOLEAN:
            return bits_;
        case Kind::PERCENT:
            return integerFromPercent(percent_);
        case Kind::STRING:
            return integerFromText(text_.str());
        default:
            return 0;
    }
}

double Value::valuePercent() const {
    switch (kind_) {
        case Kind::UINT32:
        case Kind::UINT64:
        case Kind::BOOLEAN:
            return static_cast<double>(bits_);
        case Kind::INT64:
            return static_cast<double>(static_cast<int64_t>(bits_));
        case Kind::PERCENT:
            return percent_;
        case Kind::STRING:
            return detail::parseDecimal(text_.str()).value_or(0.0);
        default:
            return 0.0;
    }
}

bool Value::valueBool() const {
    switch (kind_) {
        case Kind::UINT32:
        case Kind::UINT64:
        case Kind::INT64:
        case Kind::BOOLEAN:
            return bits_ != 0;
        case Kind::PERCENT:
            return percent_ != 0.0;
        case Kind::STRING: {
            const std::wstring_view text = detail::trimBlanks(text_.str());
            if (kiv::String(std::wstring(text)).compareIgnoreCase(L"true") == 0) return true;
            const auto number = detail::parseDecimal(text);
            return number && *number != 0.0;
        }
        default:
            return false;
    }
}

QuelString Value::valueString() const { return QuelString(toString()); }

uint32_t Value::Uint32ArraySize() const { return static_cast<uint32_t>(numbers_.size()); }

uint32_t Value::getUint32InArray(uint32_t index) const {
    return index < numbers_.size() ? numbers_[index] : 0;
}

uint32_t Value::stringArraySize() const { return static_cast<uint32_t>(texts_.size()); }

QuelString Value::getStringInArray(uint32_t index) const {
    return index < texts_.size() ? QuelString(texts_[index]) : QuelString();
}

kiv::String Value::toString() const {
    switch (kind_) {
        case Kind::UINT32:
        case Kind::UINT64:
            return kiv::String::fromNumber(bits_);
        case Kind::INT64:
            return kiv::String::fromSignedNumber(static_cast<int64_t>(bits_));
        case Kind::PERCENT:
            return kiv::String(detail::formatDecimal(percent_));
        case Kind::BOOLEAN:
            return kiv::String(bits_ != 0 ? L"true" : L"false");
        case Kind::STRING:
            return text_;
        case Kind::UINT32_ARRAY: {
            std::vector<kiv::String> items;
            for (uint32_t number : numbers_) items.push_back(kiv::String::fromNumber(number));
            return joined(items);
        }
        case Kind::STRING_ARRAY:
            return joined(texts_);
        default:
            return kiv::String();
    }
}

bool Value::operator==(const Value& other) const {
    if (isInteger(kind_) && isInteger(other.kind_)) {
        // Integers compare by number whatever width they were given in; a negative INT64 never
        // equals an unsigned value.
        const bool negative = kind_ == Kind::INT64 && static_cast<int64_t>(bits_) < 0;
        const bool otherNegative =
            other.kind_ == Kind::INT64 && static_cast<int64_t>(other.bits_) < 0;
        return negative == otherNegative && bits_ == other.bits_;
    }
    if (kind_ != other.kind_) return false;
    switch (kind_) {
        case Kind::PERCENT:
            return percent_ == other.percent_;
        case Kind::BOOLEAN:
            return bits_ == other.bits_;
        case Kind::STRING:
            return text_ == other.text_;
        case Kind::UINT32_ARRAY:
            return numbers_ == other.numbers_;
        case Kind::STRING_ARRAY:
            return texts_ == other.texts_;
        default:
            return true;
    }
}

}  // namespace quel5

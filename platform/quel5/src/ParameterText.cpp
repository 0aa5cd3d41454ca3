#include "ParameterText.h"

#include <limits>
#include <string>
#include <vector>

#include "RangeText.h"
#include "TextNumber.h"

namespace quel5::detail {

namespace {

using Kind = DataType::Kind;

std::wstring quoted(std::wstring_view text) { return L"\"" + std::wstring(text) + L"\""; }

std::optional<Value> fail(kiv::String* reason, const std::wstring& why) {
    if (reason) *reason = kiv::String(why);
    return std::nullopt;
}

std::vector<std::wstring_view> splitAtCommas(std::wstring_view text) {
    std::vector<std::wstring_view> items;
    if (trimBlanks(text).empty()) return items;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(L',', start);
        items.push_back(text.substr(start, comma - start));
        if (comma == std::wstring_view::npos) return items;
        start = comma + 1;
    }
}

// Checks `number` (the text it came from in `text`) against the range.
bool inRange(const NumericRange& range, double number, std::wstring_view text,
             const QuelString& rangeText, kiv::String* reason) {
    if (range.contains(number)) return true;
    fail(reason,
         quoted(trimBlanks(text)) + L" is outside the range " + rangeText.kivString().str());
    return false;
}

std::optional<uint64_t> unsignedWithin(std::wstring_view text, uint64_t maximum,
                                       kiv::String* reason) {
    const auto number = parseUnsigned(text);
    if (!number) {
        fail(reason, quoted(trimBlanks(text)) + L" is not a whole number");
        return std::nullopt;
    }
    if (*number > maximum) {
        fail(reason, quoted(trimBlanks(text)) + L" is too large");
        return std::nullopt;
    }
    return number;
}

std::optional<Value> booleanFromText(std::wstring_view text, kiv::String* reason) {
    const kiv::String word{std::wstring(trimBlanks(text))};
    if (word.compareIgnoreCase(L"true") == 0 || word == L"1") return Value::boolean(true);
    if (word.compareIgnoreCase(L"false") == 0 || word == L"0") return Value::boolean(false);
    return fail(reason, quoted(word.str()) + L" is not true or false");
}

std::optional<Value> percentFromText(std::wstring_view text, const NumericRange& range,
                                     const QuelString& rangeText, kiv::String* reason) {
    std::wstring_view number = trimBlanks(text);
    if (!number.empty() && number.back() == L'%') number.remove_suffix(1);
    const auto percent = parseDecimal(number);
    if (!percent) return fail(reason, quoted(trimBlanks(text)) + L" is not a number");
    if (*percent < 0.0 || *percent > 100.0) {
        return fail(reason, quoted(trimBlanks(text)) + L" is not a percentage from 0 to 100");
    }
    if (!inRange(range, *percent, text, rangeText, reason)) return std::nullopt;
    return Value::percent(*percent);
}

std::optional<Value> integerFromText(Kind kind, std::wstring_view text, const NumericRange& range,
                                     const QuelString& rangeText, kiv::String* reason) {
    if (kind == Kind::INT64) {
        const auto number = parseSigned(text);
        if (!number) return fail(reason, quoted(trimBlanks(text)) + L" is not a whole number");
        if (!inRange(range, static_cast<double>(*number), text, rangeText, reason)) {
            return std::nullopt;
        }
        return Value(static_cast<long long>(*number));
    }
    const uint64_t maximum = kind == Kind::UINT32 ? std::numeric_limits<uint32_t>::max()
                                                  : std::numeric_limits<uint64_t>::max();
    const auto number = unsignedWithin(text, maximum, reason);
    if (!number || !inRange(range, static_cast<double>(*number), text, rangeText, reason)) {
        return std::nullopt;
    }
    if (kind == Kind::UINT32) return Value(static_cast<unsigned int>(*number));
    return Value(static_cast<unsigned long long>(*number));
}

std::optional<Value> numberArrayFromText(std::wstring_view text, const NumericRange& range,
                                         const QuelString& rangeText, kiv::String* reason) {
    std::vector<uint32_t> numbers;
    for (std::wstring_view item : splitAtCommas(text)) {
        const auto number = unsignedWithin(item, std::numeric_limits<uint32_t>::max(), reason);
        if (!number || !inRange(range, static_cast<double>(*number), item, rangeText, reason)) {
            return std::nullopt;
        }
        numbers.push_back(static_cast<uint32_t>(*number));
    }
    return Value::uint32Array(std::move(numbers));
}

std::optional<Value> textArrayFromText(std::wstring_view text) {
    std::vector<kiv::String> items;
    for (std::wstring_view item : splitAtCommas(text)) {
        items.emplace_back(std::wstring(trimBlanks(item)));
    }
    return Value::stringArray(std::move(items));
}

}  // namespace

std::optional<Value> valueFromText(const DataType& type, const QuelString& range,
                                   const kiv::String& text, kiv::String* reason) {
    const auto bounds = parseRange(range.kivString().str());
    if (!bounds)
        return fail(reason, L"the range " + quoted(range.kivString().str()) + L" is not valid");
    const std::wstring_view view = text.str();
    switch (type.kind()) {
        case Kind::UINT32:
        case Kind::UINT64:
        case Kind::INT64:
            return integerFromText(type.kind(), view, *bounds, range, reason);
        case Kind::PERCENT:
            return percentFromText(view, *bounds, range, reason);
        case Kind::BOOLEAN:
            return booleanFromText(view, reason);
        case Kind::STRING:
            return Value(text);
        case Kind::UINT32_ARRAY:
            return numberArrayFromText(view, *bounds, range, reason);
        case Kind::STRING_ARRAY:
            return textArrayFromText(view);
        default:
            return fail(reason, L"the parameter has no type");
    }
}

}  // namespace quel5::detail

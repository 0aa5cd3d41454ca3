// The small part of JSON drivediag writes: one object per line, built field by field.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quel5/Event.h"
#include "quel5/Value.h"

namespace host {

// `utf8` as a quoted JSON string. Quotes, backslashes and control characters are escaped
// (\n, \t, ... or \u00XX); bytes that are not valid UTF-8 become U+FFFD so that the line stays
// valid JSON whatever a device or file name contained.
std::string jsonString(std::string_view utf8);

// A value as JSON: integers as numbers (INT64 signed), a percent as a number, booleans, texts as
// strings, arrays as arrays, a value of kind NONE as null.
std::string jsonValue(const quel5::Value& value);

// {"Name":value,...} in the variables' order.
std::string jsonVariables(const quel5::Variables& variables);

// Fields in the order added; names are written as given (escaped).
class JsonObject {
public:
    // The version of the line format: every line drivediag writes starts with it.
    static constexpr uint64_t kSchema = 1;
    // {"schema":1,"type":`type`, ...}: the start of every line drivediag writes.
    static JsonObject record(std::string_view type);

    JsonObject& text(std::string_view name, std::string_view utf8);
    JsonObject& number(std::string_view name, uint64_t value);
    // A number; null when it is not finite.
    JsonObject& decimal(std::string_view name, double value);
    JsonObject& signedNumber(std::string_view name, int64_t value);
    JsonObject& boolean(std::string_view name, bool value);
    // `json` must already be valid JSON.
    JsonObject& raw(std::string_view name, std::string_view json);
    // The object, without a trailing newline.
    std::string str() const { return "{" + body_ + "}"; }

private:
    JsonObject& field(std::string_view name, std::string_view json);
    std::string body_;
};

}  // namespace host

// Turning the text a host gives for a parameter into a value of the parameter's type.
#pragma once

#include <optional>

#include "quel5/DataType.h"
#include "quel5/Value.h"

namespace quel5::detail {

// The value `text` stands for as a `type` within `range`, or nullopt with a reason in *reason
// (when reason is not null). Numbers (and each item of a number array) are checked against the
// range; texts are not. Accepted forms:
//   UINT32, UINT64: decimal digits; INT64: with an optional sign;
//   PERCENT: a decimal number 0..100, optionally followed by '%';
//   BOOLEAN: "true", "false", "1", "0" in any case;
//   STRING: any text, kept as given;
//   UINT32_ARRAY, STRING_ARRAY: comma-separated items ("" is an empty array).
// Blanks around numbers, booleans and array items are ignored.
std::optional<Value> valueFromText(const DataType& type, const QuelString& range,
                                   const kiv::String& text, kiv::String* reason);

}  // namespace quel5::detail

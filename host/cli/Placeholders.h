// Filling {Name} placeholders of a catalogue text from the variables set on an event or string.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quel5/Event.h"

namespace host {

// `text` with every {Name} replaced by the value of the variable `Name` as Value::toString()
// writes it. A placeholder naming no variable, and a '{' without a closing '}', stay as written,
// so a missing variable is visible rather than silently dropped.
std::string fillPlaceholders(std::string_view text, const quel5::Variables& variables);

// The names inside {...} in `text`, in order of appearance (repeats included).
std::vector<std::string> placeholderNames(std::string_view text);

}  // namespace host

// Setting a named variable on a variable list: the first set appends, later sets replace the
// value in place so the list keeps the order in which names were first set.
#pragma once

#include "quel5/Event.h"

namespace quel5::detail {

void setVariable(Variables& variables, const QuelString& name, const Value& value);

}  // namespace quel5::detail

// Giving the library's test parameters their values for one run.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/TestTable.h"

namespace host {

using ParameterValues = std::vector<std::pair<std::string, std::string>>;

// Clears every parameter in the registry, then sets `test`'s defaults and after them
// `overrides` in order (a later value for a key replaces an earlier one; an empty value unsets
// the key). On success *applied (when not null) holds the values now set, key and text, in the
// order keys were first given. False with a reason for a person in *error when a key is not a
// parameter or a value does not fit it; parameters may then be partly set.
bool applyParameters(const TestDefinition& test, const ParameterValues& overrides,
                     ParameterValues* applied, std::string* error);

}  // namespace host

// Checks of a run's parameters and device that drivediag makes itself, so that a person hears
// one clear reason before anything is opened or read instead of the library's BADPARAMS.
#pragma once

#include <string>

#include "cli/TestTable.h"
#include "libDrive/Drive.h"

namespace host {

// Why the range texts set in the registry cannot be read on any drive, naming the parameter and
// the syntax that is accepted; "" when they can. The texts are read by the library's own range
// on stand-in drives, so drivediag accepts exactly what the tests accept. Call before a host is
// installed and before logging starts: what the library reports meanwhile is dropped.
std::string rangeTextProblem();

// Why `test` cannot run with the amount to test set in the registry, or "" when it can: the
// amount it counts by by default (NumberOfSeeks or SectorPercentToTest) is 0, or neither amount
// is set.
std::string amountProblem(const TestDefinition& test);

// Why `test` cannot run on `drive` (a cache test on fewer sectors than it works on), or "".
std::string deviceProblem(const TestDefinition& test, kivrlibdrive::Drive& drive,
                          const std::string& deviceText);

}  // namespace host

// The device header, the range and the run's summary as drivediag's JSON lines (schema 1; the
// fields are listed in host/README.md).
#pragma once

#include <string>

#include "cli/RunReport.h"

namespace host {

std::string headerJson(const DeviceHeader& header);
std::string rangeJson(const TestedRange& range);
std::string summaryJson(const RunSummary& summary);

}  // namespace host

// The device header and the run's summary as lines for a person.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/RunReport.h"

namespace host {

std::vector<std::string> headerLines(const DeviceHeader& header);

// "Range: sectors 0 to 2047 (2048 sectors); 1000 seeks".
std::string rangeLine(const TestedRange& range);

std::vector<std::string> summaryLines(const RunSummary& summary);

// "1000-1004, 2000, 3000-3999": runs in order, a run of one as its sector; after `limit` runs,
// "and N more runs".
std::string sectorRunsText(const std::vector<SectorRun>& runs, std::size_t limit);

}  // namespace host

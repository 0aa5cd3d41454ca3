// The run's summary in the files other tools read: a bad-blocks list as badblocks writes it
// (-o), Prometheus text exposition for node_exporter's textfile collector, a map of the
// surface. All are written to a temporary file beside the target and renamed over it, so a reader
// never sees half a file.
#pragma once

#include <string>

#include "cli/RunReport.h"

namespace host {

// The failed sectors of reads and writes, one decimal sector number per line in increasing
// order. False with a reason in *error when the file cannot be written.
bool writeBadBlocksFile(const std::string& path, const RunSummary& summary, std::string* error);

// The summary as metrics labelled by device and test.
std::string metricsText(const DeviceHeader& header, const RunSummary& summary);

// Writes `text` to `path` (replacing it whole). False with a reason in *error.
bool writeReportFile(const std::string& path, const std::string& text, std::string* error);

}  // namespace host

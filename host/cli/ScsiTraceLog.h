// The SCSI library's command trace in drivediag's log: each line on the logger "scsi.Trace" at
// priority 1, so it appears only when the log level is 1.
#pragma once

#include <memory>

#include "scsi/TracingTransport.h"

namespace host {

inline constexpr const wchar_t* kScsiTraceLoggerName = L"scsi.Trace";

// A trace sink that logs through kiv; install it with kivscsi::installTraceSink.
std::shared_ptr<kivscsi::TraceSink> makeScsiTraceLog();

}  // namespace host

// The library's logging for one run of drivediag: where messages go and from which priority,
// and the SCSI command trace logged with them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "scsi/TracingTransport.h"

namespace host {

class LogSession {
public:
    LogSession() = default;
    // Restores the priority found at start() and the SCSI trace sink it replaced, and removes
    // every log sink when start() added one.
    ~LogSession();
    LogSession(const LogSession&) = delete;
    LogSession& operator=(const LogSession&) = delete;

    // With `file`, appends messages to it; with only `level`, writes them to standard error;
    // with neither, adds no log sink. `level` (1..5) becomes the global priority. Once the log
    // is set up, SCSI commands are traced to it. False with a reason in *error when the file
    // cannot be opened.
    bool start(const std::optional<std::string>& file, std::optional<int> level,
               std::string* error);

private:
    std::optional<int> previousPriority_;
    bool addedSink_ = false;
    bool tracing_ = false;
    std::shared_ptr<kivscsi::TraceSink> previousTrace_;
};

}  // namespace host

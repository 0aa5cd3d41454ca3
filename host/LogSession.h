// The library's logging for one run of drivediag: where messages go and from which priority.
#pragma once

#include <optional>
#include <string>

namespace host {

class LogSession {
public:
    LogSession() = default;
    // Restores the priority found at start() and removes every log sink when start() added one.
    ~LogSession();
    LogSession(const LogSession&) = delete;
    LogSession& operator=(const LogSession&) = delete;

    // With `file`, appends messages to it; with only `level`, writes them to standard error;
    // with neither, changes nothing. `level` (1..5) becomes the global priority. False with a
    // reason in *error when the file cannot be opened.
    bool start(const std::optional<std::string>& file, std::optional<int> level,
               std::string* error);

private:
    std::optional<int> previousPriority_;
    bool addedSink_ = false;
};

}  // namespace host

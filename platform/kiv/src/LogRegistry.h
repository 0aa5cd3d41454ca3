// The process-wide state behind kiv::LogFactory: loggers by name, the priority threshold and
// the sinks, all behind one mutex so that worker threads may log.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "kiv/Log.h"

namespace kiv {

class LogRegistry {
public:
    static LogRegistry& instance();

    Logger* logger(const String& name);
    // Hands `record` to every sink in the order they were added.
    void dispatch(const LogRecord& record);

    std::atomic<int> priority{static_cast<int>(LogPriority::Warning)};
    void addSink(std::unique_ptr<LogSink> sink);
    void removeAllSinks();

private:
    std::mutex mutex_;
    std::map<String, std::unique_ptr<Logger>> loggers_;
    std::vector<std::unique_ptr<LogSink>> sinks_;
};

// One line of text for a record, without a line end:
// "YYYY-MM-DD hh:mm:ss.mmm P<priority> <logger>: <message>" in UTC. A line end at the end of
// the message is dropped so that a record stays one line.
std::string formatLogLine(const LogRecord& record);

}  // namespace kiv

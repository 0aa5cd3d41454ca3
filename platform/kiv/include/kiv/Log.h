// Logging of the common runtime: named loggers, priorities 1 (detail) to 5 (notice), one global
// threshold, and sinks that receive every message at or above it.
//
// A message is written when its priority >= LogFactory::getPriority(). Messages are passed
// through as given: callers put their own "<line> " prefix in front. Until the host adds a sink,
// written messages go nowhere. Every member is safe to call from any thread; sinks receive one
// record at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kiv/Export.h"
#include "kiv/String.h"

namespace kiv {

enum class LogPriority : int { Detail = 1, Timing = 2, Abort = 3, Warning = 4, Notice = 5 };

struct LogRecord {
    String logger;
    int priority = 0;
    String message;
    uint64_t timeMilliseconds = 0;  // from the one clock
};

// Where written messages go. Sinks are owned by the LogFactory once added.
class KIV_API LogSink {
public:
    virtual ~LogSink();
    virtual void write(const LogRecord& record) = 0;
};

class KIV_API Logger {
public:
    explicit Logger(String name);
    const String& getName() const { return name_; }
    // Writes `message` when `priority` >= the global priority.
    void log(int priority, const String& message) const;
    bool isEnabled(int priority) const;

private:
    String name_;
};

class KIV_API LogFactory {
public:
    // Returns the process-wide logger of that name (created on first request) and stores it in
    // *slot when slot is not null. Loggers live until the process ends.
    static Logger* createLogger(const String& name, Logger** slot);
    static int getPriority();
    static void setPriority(int priority);  // clamped to 1..5; default 4

    static void addSink(std::unique_ptr<LogSink> sink);
    static void removeAllSinks();
};

// Sinks: standard error, a file (appended), and memory for tests. Standard error and file get
// one line per record, "YYYY-MM-DD hh:mm:ss.mmm P<priority> <logger>: <message>" in UTC, with
// a line end at the end of the message dropped. A sink must not log itself.
class KIV_API StandardErrorSink : public LogSink {
public:
    void write(const LogRecord& record) override;
};

class KIV_API FileSink : public LogSink {
public:
    // Throws kiv::Exception when the file cannot be opened for appending.
    explicit FileSink(const String& path);
    ~FileSink() override;
    void write(const LogRecord& record) override;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// Keeps every record; readers call records() after the code under test has run. Copies share
// one store, so a test keeps a copy and hands the other to LogFactory::addSink.
class KIV_API MemorySink : public LogSink {
public:
    void write(const LogRecord& record) override;
    std::vector<LogRecord> records() const;
    void clear();

private:
    struct Impl;
    std::shared_ptr<Impl> impl_ = makeImpl();
    static std::shared_ptr<Impl> makeImpl();
};

// Logs "<line> Entering <function> (<source>)" at construction and "<line> Leaving <function>"
// at destruction, both at priority 1.
class KIV_API TraceLogger {
public:
    TraceLogger(const Logger* logger, const String& function, const String& source, int line);
    ~TraceLogger();
    TraceLogger(const TraceLogger&) = delete;
    TraceLogger& operator=(const TraceLogger&) = delete;

private:
    const Logger* logger_;
    String function_;
    int line_;
};

// Defects the code can detect about itself go to the "DEFECT.GENERIC" logger.
class KIV_API AssertionFailure {
public:
    // Logs "<line> Assertion failed: <text> (<file>)" at priority 5 to "DEFECT.GENERIC".
    static void logAssert(const String& file, int line, const String& text);
    static Logger* defectLogger();
};

}  // namespace kiv

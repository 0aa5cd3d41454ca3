#include "kiv/Log.h"

#include "LogRegistry.h"
#include "os/Clock.h"

namespace kiv {

LogSink::~LogSink() = default;

Logger::Logger(String name) : name_(std::move(name)) {}

bool Logger::isEnabled(int priority) const {
    return priority >= LogRegistry::instance().priority.load();
}

void Logger::log(int priority, const String& message) const {
    if (!isEnabled(priority)) return;
    LogRecord record;
    record.logger = name_;
    record.priority = priority;
    record.message = message;
    record.timeMilliseconds = os::nowMilliseconds();
    LogRegistry::instance().dispatch(record);
}

Logger* LogFactory::createLogger(const String& name, Logger** slot) {
    Logger* logger = LogRegistry::instance().logger(name);
    if (slot) *slot = logger;
    return logger;
}

int LogFactory::getPriority() { return LogRegistry::instance().priority.load(); }

void LogFactory::setPriority(int priority) {
    if (priority < static_cast<int>(LogPriority::Detail)) priority = 1;
    if (priority > static_cast<int>(LogPriority::Notice)) priority = 5;
    LogRegistry::instance().priority.store(priority);
}

void LogFactory::addSink(std::unique_ptr<LogSink> sink) {
    LogRegistry::instance().addSink(std::move(sink));
}

void LogFactory::removeAllSinks() { LogRegistry::instance().removeAllSinks(); }

TraceLogger::TraceLogger(const Logger* logger, const String& function, const String& source,
                         int line)
    : logger_(logger), function_(function), line_(line) {
    if (logger_) {
        logger_->log(
            1, String::fromSignedNumber(line_) + L" Entering " + function_ + L" (" + source + L")");
    }
}

TraceLogger::~TraceLogger() {
    if (logger_) {
        logger_->log(1, String::fromSignedNumber(line_) + L" Leaving " + function_);
    }
}

Logger* AssertionFailure::defectLogger() {
    static Logger* logger = LogFactory::createLogger(L"DEFECT.GENERIC", nullptr);
    return logger;
}

void AssertionFailure::logAssert(const String& file, int line, const String& text) {
    defectLogger()->log(
        5, String::fromSignedNumber(line) + L" Assertion failed: " + text + L" (" + file + L")");
}

}  // namespace kiv

#include "LogRegistry.h"

#include <cstdio>

namespace kiv {
namespace {

struct CivilDate {
    int64_t year;
    unsigned month, day;
};

// Days since 1970-01-01 to a proleptic Gregorian date (Howard Hinnant's algorithm).
CivilDate civilFromDays(int64_t days) {
    days += 719468;
    const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shiftedMonth = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const unsigned month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const int64_t year = static_cast<int64_t>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0);
    return {year, month, day};
}

}  // namespace

LogRegistry& LogRegistry::instance() {
    // Never destroyed: loggers are handed out as raw pointers that static objects of other
    // modules may still use while the process ends.
    static LogRegistry* registry = new LogRegistry;
    return *registry;
}

Logger* LogRegistry::logger(const String& name) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto& slot = loggers_[name];
    if (!slot) slot = std::make_unique<Logger>(name);
    return slot.get();
}

void LogRegistry::dispatch(const LogRecord& record) {
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto& sink : sinks_) sink->write(record);
}

void LogRegistry::addSink(std::unique_ptr<LogSink> sink) {
    if (!sink) return;
    std::lock_guard<std::mutex> lock(mutex_);
    sinks_.push_back(std::move(sink));
}

void LogRegistry::removeAllSinks() {
    std::lock_guard<std::mutex> lock(mutex_);
    sinks_.clear();
}

std::string formatLogLine(const LogRecord& record) {
    const uint64_t seconds = record.timeMilliseconds / 1000;
    const auto millis = static_cast<unsigned>(record.timeMilliseconds % 1000);
    const CivilDate date = civilFromDays(static_cast<int64_t>(seconds / 86400));
    const auto secondOfDay = static_cast<unsigned>(seconds % 86400);
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%04lld-%02u-%02u %02u:%02u:%02u.%03u P%d ",
                  static_cast<long long>(date.year), date.month, date.day, secondOfDay / 3600,
                  secondOfDay / 60 % 60, secondOfDay % 60, millis, record.priority);
    std::string message = record.message.toUtf8();
    if (!message.empty() && message.back() == '\n') message.pop_back();
    if (!message.empty() && message.back() == '\r') message.pop_back();
    return stamp + record.logger.toUtf8() + ": " + message;
}

}  // namespace kiv

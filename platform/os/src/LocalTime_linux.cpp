#include <ctime>

#include "LocalTimeConversion.h"

namespace os::detail {

LocalTime toLocalTime(uint64_t utcMilliseconds) {
    const time_t seconds = static_cast<time_t>(utcMilliseconds / 1000);
    tm parts{};
    localtime_r(&seconds, &parts);
    LocalTime local;
    local.year = static_cast<uint16_t>(parts.tm_year + 1900);
    local.month = static_cast<uint16_t>(parts.tm_mon + 1);
    local.dayOfWeek = static_cast<uint16_t>(parts.tm_wday);
    local.day = static_cast<uint16_t>(parts.tm_mday);
    local.hour = static_cast<uint16_t>(parts.tm_hour);
    local.minute = static_cast<uint16_t>(parts.tm_min);
    local.second = static_cast<uint16_t>(parts.tm_sec);
    local.milliseconds = static_cast<uint16_t>(utcMilliseconds % 1000);
    return local;
}

}  // namespace os::detail

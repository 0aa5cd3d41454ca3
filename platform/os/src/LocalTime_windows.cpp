#include <windows.h>

#include "LocalTimeConversion.h"

namespace os::detail {
namespace {
// 100-nanosecond intervals between 1601-01-01 (FILETIME's epoch) and 1970-01-01.
constexpr uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;
}  // namespace

LocalTime toLocalTime(uint64_t utcMilliseconds) {
    const uint64_t ticks = utcMilliseconds * 10000 + kUnixEpochAsFileTime;
    FILETIME utcFile;
    utcFile.dwLowDateTime = static_cast<DWORD>(ticks);
    utcFile.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
    SYSTEMTIME utc{};
    SYSTEMTIME local{};
    // The zone's rule for that date (daylight saving included), as GetLocalTime would apply.
    if (!FileTimeToSystemTime(&utcFile, &utc) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local)) {
        local = utc;
    }
    return LocalTime{local.wYear, local.wMonth,  local.wDayOfWeek, local.wDay,
                     local.wHour, local.wMinute, local.wSecond,    local.wMilliseconds};
}

}  // namespace os::detail

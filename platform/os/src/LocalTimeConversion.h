// Turning the clock's UTC instant into the process's local calendar time (per platform).
#pragma once

#include <cstdint>

#include "os/Clock.h"

namespace os::detail {

// `utcMilliseconds`: milliseconds since 1970-01-01 UTC.
LocalTime toLocalTime(uint64_t utcMilliseconds);

}  // namespace os::detail

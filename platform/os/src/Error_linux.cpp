#include <cerrno>
#include <cstring>

#include "os/Error.h"

namespace os {

std::string describeError(uint32_t code) {
    char buffer[256] = {};
    // The GNU strerror_r may return a static string instead of filling the buffer.
    return strerror_r(static_cast<int>(code), buffer, sizeof buffer);
}

uint32_t errorCodeBusy() { return EBUSY; }
uint32_t errorCodeNotFound() { return ENOENT; }
uint32_t errorCodeNotSupported() { return ENOTSUP; }
uint32_t errorCodeInvalid() { return EINVAL; }

}  // namespace os

// The outcome of an operating-system call: the system's own error code and a readable message.
#pragma once

#include <cstdint>
#include <string>

#include "os/Export.h"

namespace os {

struct Error {
    // errno on Linux, GetLastError() on Windows; 0 means success.
    uint32_t code = 0;
    // What went wrong, for a person (UTF-8); empty on success.
    std::string message;

    bool ok() const { return code == 0; }
};

// The system's text for `code` (strerror / FormatMessage), UTF-8.
OS_API std::string describeError(uint32_t code);
// An Error for `code` whose message is `what` + ": " + the system's text.
OS_API Error makeError(uint32_t code, const std::string& what);

// Codes this library reports itself, in the system's numbering.
OS_API uint32_t errorCodeBusy();          // EBUSY / ERROR_SHARING_VIOLATION
OS_API uint32_t errorCodeNotFound();      // ENOENT / ERROR_FILE_NOT_FOUND
OS_API uint32_t errorCodeNotSupported();  // ENOTSUP / ERROR_NOT_SUPPORTED
OS_API uint32_t errorCodeInvalid();       // EINVAL / ERROR_INVALID_PARAMETER

}  // namespace os

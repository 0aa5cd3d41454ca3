// Device control codes sent to an open Windows handle. Handles from os::openDevice are opened
// for overlapped I/O (so that reads from several threads run in parallel), and a handle opened
// that way must be given an OVERLAPPED for every DeviceIoControl call; this call always gives
// one and waits, so it suits synchronous handles as well.
#pragma once

#if defined(_WIN32)

#include <cstdint>

#include "os/Export.h"
#include "os/NativeHandle.h"

namespace os {

struct ControlResult {
    uint32_t bytes = 0;  // bytes written to the output buffer (also with ERROR_MORE_DATA)
    uint32_t error = 0;  // 0 (ERROR_SUCCESS) or the GetLastError() code of the failure
    bool ok() const { return error == 0; }
};

// DeviceIoControl(handle, code, in, inBytes, out, outBytes) to its end.
OS_API ControlResult controlDevice(NativeHandle handle, uint32_t code, const void* in,
                                   uint32_t inBytes, void* out, uint32_t outBytes);

}  // namespace os

#endif

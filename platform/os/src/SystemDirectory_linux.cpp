#include <cstdlib>

#include "os/Device.h"
#include "os/Utf8.h"

namespace os {

std::wstring systemDirectory() {
    const char* hostChoice = std::getenv("LIBDRIVE_SYSTEM_DIRECTORY");
    if (hostChoice != nullptr && *hostChoice != '\0') {
        return fromUtf8(hostChoice);
    }
    return L"C:\\Windows\\system32";
}

}  // namespace os

#include <windows.h>

#include "os/Device.h"

namespace os {

std::wstring systemDirectory() {
    wchar_t buffer[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(buffer, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return {};
    }
    return std::wstring(buffer, length);
}

}  // namespace os

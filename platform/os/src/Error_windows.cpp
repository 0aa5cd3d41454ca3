#include <windows.h>

#include "os/Error.h"
#include "os/Utf8.h"

namespace os {

std::string describeError(uint32_t code) {
    wchar_t buffer[512] = {};
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                       buffer, static_cast<DWORD>(sizeof buffer / sizeof buffer[0]), nullptr);
    std::wstring text(buffer, length);
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L' ')) {
        text.pop_back();
    }
    if (text.empty()) {
        return "error " + std::to_string(code);
    }
    return toUtf8(text);
}

uint32_t errorCodeBusy() { return ERROR_SHARING_VIOLATION; }
uint32_t errorCodeNotFound() { return ERROR_FILE_NOT_FOUND; }
uint32_t errorCodeNotSupported() { return ERROR_NOT_SUPPORTED; }
uint32_t errorCodeInvalid() { return ERROR_INVALID_PARAMETER; }

}  // namespace os

#include <windows.h>

#include "SystemDirectories.h"

namespace kiv::platform {
namespace {

String fromBuffer(const wchar_t* buffer, UINT length, UINT capacity) {
    return (length == 0 || length >= capacity) ? String() : String(std::wstring(buffer, length));
}

}  // namespace

String windowsDirectory() {
    wchar_t buffer[MAX_PATH + 1];
    return fromBuffer(buffer, GetWindowsDirectoryW(buffer, MAX_PATH + 1), MAX_PATH + 1);
}

String systemDirectory() {
    wchar_t buffer[MAX_PATH + 1];
    return fromBuffer(buffer, GetSystemDirectoryW(buffer, MAX_PATH + 1), MAX_PATH + 1);
}

}  // namespace kiv::platform

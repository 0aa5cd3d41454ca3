// The operating system's own handle for an open device: a HANDLE on Windows, a file descriptor
// elsewhere. Declared without <windows.h> so that every header stays platform-neutral.
#pragma once

namespace os {

#if defined(_WIN32)
using NativeHandle = void*;  // HANDLE; INVALID_HANDLE_VALUE (all ones) when invalid
inline NativeHandle invalidNativeHandle() { return reinterpret_cast<NativeHandle>(-1); }
#else
using NativeHandle = int;  // file descriptor; -1 when invalid
inline NativeHandle invalidNativeHandle() { return -1; }
#endif

}  // namespace os

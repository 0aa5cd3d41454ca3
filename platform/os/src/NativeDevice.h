// What each platform provides for devices (Device_linux.cpp / Device_windows.cpp), and the
// emulated-device side (EmulatedDevices.cpp). Device.cpp chooses between them.
#pragma once

#include <string>

#include "os/Device.h"

namespace os::detail {

OpenResult nativeOpen(const std::string& path, uint32_t access);
OpenResult nativeReopenExclusive(NativeHandle handle);
void nativeClose(NativeHandle handle);
GeometryResult nativeGeometry(NativeHandle handle);
IoResult nativeReadAt(NativeHandle handle, uint64_t offset, void* buffer, size_t size);
IoResult nativeWriteAt(NativeHandle handle, uint64_t offset, const void* buffer, size_t size);
// A real, closable handle that stands for an emulated device (it refers to nothing useful).
NativeHandle newPlaceholderHandle();

// Emulated devices. Each returns false when the name or handle is not an emulated one.
bool openEmulated(const std::string& name, uint32_t access, OpenResult& result);
bool reopenEmulatedExclusive(NativeHandle handle, OpenResult& result);
// Forgets the handle's claim on its emulated device.
void forgetEmulatedHandle(NativeHandle handle);

// The geometry answered for devices without a cylinder/head/sector view.
DiskGeometry translatedGeometry(uint64_t totalBytes, uint32_t bytesPerSector);

}  // namespace os::detail

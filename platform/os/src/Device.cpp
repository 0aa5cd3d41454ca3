#include "os/Device.h"

#include <utility>

#include "NativeDevice.h"
#include "os/EmulatedDevice.h"
#include "os/Utf8.h"

namespace os {

DeviceHandle::~DeviceHandle() { close(); }

DeviceHandle::DeviceHandle(DeviceHandle&& other) noexcept : native_(other.release()) {}

DeviceHandle& DeviceHandle::operator=(DeviceHandle&& other) noexcept {
    if (this != &other) {
        close();
        native_ = other.release();
    }
    return *this;
}

NativeHandle DeviceHandle::release() { return std::exchange(native_, invalidNativeHandle()); }

void DeviceHandle::close() { closeNativeHandle(release()); }

OpenResult openDevice(const std::string& path, uint32_t access) {
    if ((access & (kRead | kReadWrite | kQuery)) == 0) {
        return OpenResult{{}, Error{errorCodeInvalid(), "open " + path + ": no access asked"}};
    }
    OpenResult result;
    if (detail::openEmulated(path, access, result)) {
        return result;
    }
    return detail::nativeOpen(path, access);
}

OpenResult openDevice(const std::wstring& path, uint32_t access) {
    return openDevice(toUtf8(path), access);
}

OpenResult reopenExclusive(NativeHandle handle) {
    OpenResult result;
    if (detail::reopenEmulatedExclusive(handle, result)) {
        return result;
    }
    return detail::nativeReopenExclusive(handle);
}

void closeNativeHandle(NativeHandle handle) {
    if (handle == invalidNativeHandle()) {
        return;
    }
    detail::forgetEmulatedHandle(handle);
    detail::nativeClose(handle);
}

GeometryResult queryDiskGeometry(NativeHandle handle) {
    if (auto device = emulatedDeviceFor(handle)) {
        return device->geometry();
    }
    return detail::nativeGeometry(handle);
}

IoResult readAt(NativeHandle handle, uint64_t offset, void* buffer, size_t size) {
    if (auto device = emulatedDeviceFor(handle)) {
        return device->readAt(offset, buffer, size);
    }
    return detail::nativeReadAt(handle, offset, buffer, size);
}

IoResult writeAt(NativeHandle handle, uint64_t offset, const void* buffer, size_t size) {
    if (auto device = emulatedDeviceFor(handle)) {
        return device->writeAt(offset, buffer, size);
    }
    return detail::nativeWriteAt(handle, offset, buffer, size);
}

namespace detail {

DiskGeometry translatedGeometry(uint64_t totalBytes, uint32_t bytesPerSector) {
    // The translation BIOSes and partitioning tools use when a disk has no physical CHS.
    constexpr uint32_t kHeads = 255;
    constexpr uint32_t kSectorsPerTrack = 63;
    DiskGeometry geometry;
    geometry.bytesPerSector = bytesPerSector;
    geometry.tracksPerCylinder = kHeads;
    geometry.sectorsPerTrack = kSectorsPerTrack;
    geometry.cylinders = totalBytes / bytesPerSector / (kHeads * kSectorsPerTrack);
    geometry.totalBytes = totalBytes;
    return geometry;
}

}  // namespace detail
}  // namespace os

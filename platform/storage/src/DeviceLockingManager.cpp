#include "storage/DeviceLockingManager.h"

#include "Hold.h"
#include "os/EmulatedDevice.h"
#include "os/Utf8.h"

namespace libStorage {

struct DeviceLockingManager::Impl {
    std::wstring locator;
    std::wstring failure;
    os::NativeHandle driveHandle = os::invalidNativeHandle();
    std::unique_ptr<detail::Hold> hold;
};

namespace {

// Emulated devices live in this process: their one exclusive handle is the lock.
std::unique_ptr<detail::Hold> lockEmulated(const std::string& path, std::wstring& failure) {
    os::OpenResult opened = os::openDevice(path, os::kRead | os::kExclusive);
    if (!opened.error.ok()) {
        failure = os::fromUtf8(opened.error.message);
        return nullptr;
    }
    return std::make_unique<detail::HandleHold>(std::move(opened.handle));
}

}  // namespace

DeviceLockingManager::DeviceLockingManager(std::wstring osLocator)
    : impl_(std::make_unique<Impl>()) {
    impl_->locator = std::move(osLocator);
}

DeviceLockingManager::~DeviceLockingManager() = default;

void DeviceLockingManager::setDriveHandle(os::NativeHandle handle) { impl_->driveHandle = handle; }

os::NativeHandle DeviceLockingManager::driveHandle() const { return impl_->driveHandle; }

bool DeviceLockingManager::lockVolumes() {
    if (impl_->hold) {
        return true;
    }
    impl_->failure.clear();
    const std::string path = os::toUtf8(impl_->locator);
    if (path.empty()) {
        impl_->failure = L"no device named";
        return false;
    }
    impl_->hold = os::findEmulatedDevice(path)
                      ? lockEmulated(path, impl_->failure)
                      : detail::lockDisk(path, impl_->driveHandle, impl_->failure);
    return impl_->hold != nullptr;
}

bool DeviceLockingManager::unlockVolumes() {
    const bool held = impl_->hold != nullptr;
    impl_->hold.reset();
    return held;
}

bool DeviceLockingManager::isLocked() const { return impl_->hold != nullptr; }

const std::wstring& DeviceLockingManager::lastFailure() const { return impl_->failure; }

}  // namespace libStorage

#include <algorithm>
#include <map>
#include <mutex>

#include "NativeDevice.h"
#include "os/EmulatedDevice.h"

namespace os {
namespace {

struct OpenEmulated {
    std::shared_ptr<EmulatedDevice> device;
    bool exclusive = false;
};

struct Registry {
    std::mutex mutex;
    std::map<std::string, std::shared_ptr<EmulatedDevice>> byName;
    std::map<NativeHandle, OpenEmulated> byHandle;

    bool heldExclusively(const EmulatedDevice* device) const {
        return std::any_of(byHandle.begin(), byHandle.end(), [device](const auto& entry) {
            return entry.second.exclusive && entry.second.device.get() == device;
        });
    }
};

Registry& registry() {
    static Registry instance;
    return instance;
}

Error notSupported(const char* what) {
    return Error{errorCodeNotSupported(),
                 std::string("emulated device: ") + what + " not supported"};
}

// Claims a placeholder handle for `device`; called with the registry locked.
OpenResult claim(Registry& r, std::shared_ptr<EmulatedDevice> device, bool exclusive,
                 const std::string& name) {
    if (exclusive && r.heldExclusively(device.get())) {
        return OpenResult{{}, Error{errorCodeBusy(), name + " is held exclusively elsewhere"}};
    }
    const NativeHandle handle = detail::newPlaceholderHandle();
    if (handle == invalidNativeHandle()) {
        return OpenResult{{}, Error{errorCodeBusy(), name + ": no handle available"}};
    }
    r.byHandle[handle] = OpenEmulated{std::move(device), exclusive};
    return OpenResult{DeviceHandle(handle), Error{}};
}

}  // namespace

EmulatedDevice::~EmulatedDevice() = default;

Error EmulatedDevice::open(uint32_t) { return Error{}; }

GeometryResult EmulatedDevice::geometry() { return GeometryResult{{}, notSupported("geometry")}; }

IoResult EmulatedDevice::readAt(uint64_t, void*, size_t) {
    return IoResult{0, notSupported("read")};
}

IoResult EmulatedDevice::writeAt(uint64_t, const void*, size_t) {
    return IoResult{0, notSupported("write")};
}

void registerEmulatedDevice(const std::string& name, std::shared_ptr<EmulatedDevice> device) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.byName[name] = std::move(device);
}

bool unregisterEmulatedDevice(const std::string& name) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    return r.byName.erase(name) > 0;
}

std::shared_ptr<EmulatedDevice> findEmulatedDevice(const std::string& name) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto found = r.byName.find(name);
    return found == r.byName.end() ? nullptr : found->second;
}

std::shared_ptr<EmulatedDevice> emulatedDeviceFor(NativeHandle handle) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto found = r.byHandle.find(handle);
    return found == r.byHandle.end() ? nullptr : found->second.device;
}

namespace detail {

bool openEmulated(const std::string& name, uint32_t access, OpenResult& result) {
    std::shared_ptr<EmulatedDevice> device = findEmulatedDevice(name);
    if (!device) {
        return false;
    }
    // Asked outside the registry's lock: the device may itself use the registry.
    if (Error refused = device->open(access); !refused.ok()) {
        result = OpenResult{{}, std::move(refused)};
        return true;
    }
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    result = claim(r, std::move(device), (access & kExclusive) != 0, name);
    return true;
}

bool reopenEmulatedExclusive(NativeHandle handle, OpenResult& result) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto found = r.byHandle.find(handle);
    if (found == r.byHandle.end()) {
        return false;
    }
    result = claim(r, found->second.device, true, "emulated device");
    return true;
}

void forgetEmulatedHandle(NativeHandle handle) {
    std::shared_ptr<EmulatedDevice> last;  // released after the lock, outside the registry
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto found = r.byHandle.find(handle);
    if (found != r.byHandle.end()) {
        last = std::move(found->second.device);
        r.byHandle.erase(found);
    }
}

}  // namespace detail
}  // namespace os

#include "os/OpenDevices.h"

#include <map>
#include <mutex>

namespace os {
namespace {

struct Table {
    std::mutex mutex;
    std::map<std::string, NativeHandle*> entries;
};

Table& table() {
    static Table instance;
    return instance;
}

}  // namespace

void registerOpenDevice(const std::string& deviceName, NativeHandle* handle) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    t.entries[deviceName] = handle;
}

bool unregisterOpenDevice(const std::string& deviceName) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    return t.entries.erase(deviceName) != 0;
}

NativeHandle* findOpenDevice(const std::string& deviceName) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    auto found = t.entries.find(deviceName);
    return found == t.entries.end() ? nullptr : found->second;
}

NativeHandle openDeviceHandle(const std::string& deviceName) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    auto found = t.entries.find(deviceName);
    if (found == t.entries.end() || found->second == nullptr) {
        return invalidNativeHandle();
    }
    return *found->second;
}

}  // namespace os

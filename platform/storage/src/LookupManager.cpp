#include "storage/LookupManager.h"

#include <map>
#include <mutex>

namespace libStorage {
namespace {

struct Table {
    std::mutex mutex;
    std::map<std::string, os::NativeHandle*> entries;
};

Table& table() {
    static Table instance;
    return instance;
}

}  // namespace

void LookupManager::insert(const std::string& deviceName, os::NativeHandle* handle) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    t.entries[deviceName] = handle;
}

bool LookupManager::contains(const std::string& deviceName) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    return t.entries.count(deviceName) != 0;
}

bool LookupManager::remove(const std::string& deviceName) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    return t.entries.erase(deviceName) != 0;
}

os::NativeHandle* LookupManager::get(const std::string& deviceName) {
    Table& t = table();
    std::lock_guard<std::mutex> lock(t.mutex);
    auto found = t.entries.find(deviceName);
    return found == t.entries.end() ? nullptr : found->second;
}

}  // namespace libStorage

#include "kiv/WindowsSystem.h"

#include <mutex>

#include "SystemDirectories.h"

using kiv::String;

namespace {

struct Directories {
    std::mutex mutex;
    String windows;  // "" means: ask the platform
    String system;
};

Directories& directories() {
    static Directories instance;
    return instance;
}

String chosen(String Directories::*field, String (*fromPlatform)()) {
    {
        std::lock_guard<std::mutex> lock(directories().mutex);
        const String& set = directories().*field;
        if (!set.isEmpty()) return set;
    }
    return fromPlatform();
}

void store(String Directories::*field, const String& path) {
    std::lock_guard<std::mutex> lock(directories().mutex);
    directories().*field = path;
}

}  // namespace

String WindowsSystem::getWindowsDirectory() {
    return chosen(&Directories::windows, kiv::platform::windowsDirectory);
}

String WindowsSystem::getSystemDirectory() {
    return chosen(&Directories::system, kiv::platform::systemDirectory);
}

void WindowsSystem::setWindowsDirectory(const String& path) { store(&Directories::windows, path); }

void WindowsSystem::setSystemDirectory(const String& path) { store(&Directories::system, path); }

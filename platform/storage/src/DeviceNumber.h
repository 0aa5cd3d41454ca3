// Block device numbers as Linux writes them in text ("8:17" in sysfs "dev" files and in
// /proc/self/mountinfo). Linux only (DeviceNumber_linux.cpp).
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>

namespace libStorage::detail {

// The device number "major:minor" names; nothing when `text` is not of that form.
std::optional<dev_t> parseDeviceNumber(const std::string& text);

// The device number a sysfs "dev" file holds; nothing when it cannot be read or parsed.
std::optional<dev_t> deviceNumberIn(const std::filesystem::path& devFile);

}  // namespace libStorage::detail

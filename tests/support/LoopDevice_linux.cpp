#include "support/LoopDevice.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace testsupport {

std::string firstLineOf(const std::string& command) {
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) return "";
    std::array<char, 256> buffer{};
    std::string line =
        std::fgets(buffer.data(), buffer.size(), pipe) != nullptr ? buffer.data() : "";
    // Read to the end, so that the command never dies of a closed pipe.
    while (std::fgets(buffer.data(), buffer.size(), pipe) != nullptr) {
    }
    if (pclose(pipe) != 0) return "";
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
    return line;
}

bool succeeds(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

std::string loopDevicesUnavailable() {
    if (geteuid() != 0 || !std::filesystem::exists("/dev/loop-control") ||
        firstLineOf("losetup --version").empty()) {
        return "needs root and losetup";
    }
    return "";
}

LoopDevice::LoopDevice(const std::string& image, const std::string& options)
    : path_(firstLineOf("losetup --find --show " + options + " " + image)) {}

LoopDevice::~LoopDevice() {
    if (!path_.empty()) succeeds("losetup -d " + path_);
}

std::string LoopDevice::name() const { return std::filesystem::path(path_).filename().string(); }

unsigned long long LoopDevice::writesDone() const {
    // Fields of /sys/block/<name>/stat: read I/Os, read merges, read sectors, read ticks, write
    // I/Os, ...
    std::ifstream stat("/sys/block/" + name() + "/stat");
    std::array<unsigned long long, 5> fields{};
    for (unsigned long long& field : fields) stat >> field;
    return fields[4];
}

MountedFilesystem::MountedFilesystem(const std::string& device)
    : directory_((std::filesystem::temp_directory_path() /
                  ("libdrive-mnt-" + std::filesystem::path(device).filename().string() + "-" +
                   std::to_string(getpid())))
                     .string()) {
    std::filesystem::create_directories(directory_);
    mounted_ = succeeds("mount " + device + " " + directory_);
}

MountedFilesystem::~MountedFilesystem() {
    unmount();
    std::error_code ignored;
    std::filesystem::remove(directory_, ignored);
}

bool MountedFilesystem::unmount() {
    mounted_ = mounted_ && !succeeds("umount " + directory_);
    return !mounted_;
}

}  // namespace testsupport

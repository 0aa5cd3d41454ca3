#include <algorithm>
#include <fstream>
#include <system_error>

#include "cli/DriveList.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// The first line of a small attribute file, without trailing blanks; "" when unreadable.
std::string readAttribute(const fs::path& file) {
    std::ifstream in(file);
    std::string line;
    if (!in || !std::getline(in, line)) return "";
    while (!line.empty() && (line.back() == ' ' || line.back() == '\n' || line.back() == '\r' ||
                             line.back() == '\t'))
        line.pop_back();
    return line;
}

uint64_t readNumber(const fs::path& file) {
    const std::string text = readAttribute(file);
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return 0;
    try {
        return std::stoull(text);
    } catch (const std::exception&) {
        return 0;
    }
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

std::vector<DriveInfo> scanSysBlock(const fs::path& sysBlock, const std::string& devDirectory) {
    std::vector<DriveInfo> drives;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(sysBlock, error)) {
        const std::string name = entry.path().filename().string();
        if (startsWith(name, "ram") || startsWith(name, "zram")) continue;
        DriveInfo drive;
        drive.path = devDirectory + "/" + name;
        if (startsWith(name, "loop")) {
            const std::string backing = readAttribute(entry.path() / "loop" / "backing_file");
            if (backing.empty()) continue;
            drive.model = "loop: " + backing;
        } else {
            drive.model = readAttribute(entry.path() / "device" / "model");
        }
        // The kernel counts the size in 512-byte units whatever the sector size.
        drive.sizeBytes = readNumber(entry.path() / "size") * 512;
        drive.optical = startsWith(name, "sr");
        if (drive.sizeBytes == 0 && !drive.optical) continue;
        drive.bytesPerSector =
            static_cast<uint32_t>(readNumber(entry.path() / "queue" / "logical_block_size"));
        if (drive.bytesPerSector == 0) drive.bytesPerSector = 512;
        drives.push_back(std::move(drive));
    }
    std::sort(drives.begin(), drives.end(),
              [](const DriveInfo& a, const DriveInfo& b) { return a.path < b.path; });
    return drives;
}

}  // namespace host

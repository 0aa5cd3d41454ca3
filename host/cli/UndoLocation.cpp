#include "cli/UndoLocation.h"

#include <filesystem>

#include "drives/Utf8Path.h"

namespace host {
namespace {

// "/dev/loop0" -> "drivediag-undo-dev_loop0.journal": one journal per device, a plain name.
std::string fileNameFor(const std::string& devicePath) {
    std::string name;
    for (char c : devicePath) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                           (c >= '0' && c <= '9') || c == '.' || c == '-';
        if (plain) {
            name += c;
        } else if (!name.empty() && name.back() != '_') {
            name += '_';
        }
    }
    return "drivediag-undo-" + name + ".journal";
}

}  // namespace

std::string undoJournalPath(const std::optional<std::string>& chosen,
                            const std::optional<std::string>& logFile,
                            const std::string& devicePath) {
    if (chosen) return *chosen;
    std::filesystem::path folder;
    if (logFile) {
        folder = pathFromUtf8(*logFile).parent_path();
        if (folder.empty()) folder = ".";
    } else {
        const std::string state = stateDirectory();
        if (state.empty()) return "";
        folder = pathFromUtf8(state);
    }
    return utf8FromPath(folder / pathFromUtf8(fileNameFor(devicePath)));
}

}  // namespace host

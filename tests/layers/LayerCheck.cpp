#include "LayerCheck.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace layers {
namespace {

struct Layer {
    const char* name;
    const char* folder;
    std::vector<std::string> below;  // layers it may use directly
};

// The arrows of design.md's layer table. A layer may also use whatever the layers it uses may.
const std::vector<Layer>& layerTable() {
    static const std::vector<Layer> table = {
        {"os", "platform/os", {}},
        {"kiv", "platform/kiv", {"os"}},
        {"quel5", "platform/quel5", {"kiv"}},
        {"storage", "platform/storage", {"os"}},
        {"scsi", "platform/scsi", {"os"}},
        {"libDrive", "libDrive", {"os", "kiv", "quel5", "storage", "scsi"}},
        {"sim", "sim", {"libDrive", "quel5", "kiv", "storage", "scsi", "os"}},
        {"host", "host", {"sim", "libDrive", "quel5", "kiv", "storage", "scsi", "os"}},
        {"tests", "tests", {"host"}},
        {"fuzz", "fuzz", {"host"}},
        {"bench", "bench", {"tests"}},
    };
    return table;
}

// Where a quoted include is looked for after the including file's own folder: each library's
// published headers, then the internal ones its tests reach. Never the tree's root.
const std::vector<std::string>& includeRoots() {
    static const std::vector<std::string> roots = {
        "platform/os/include",
        "platform/kiv/include",
        "platform/quel5/include",
        "platform/storage/include",
        "platform/scsi/include",
        "libDrive/include",
        "sim/include",
        "sim/mmc/include",
        "host",
        "tests",
        "platform/os/src",
        "platform/kiv/src",
        "platform/quel5/src",
        "platform/storage/src",
        "platform/scsi/src",
        "libDrive",
    };
    return roots;
}

// Headers the build generates (each library's Export.h), named by the library's prefix.
std::string generatedHeaderLayer(const std::string& include) {
    for (const Layer& layer : layerTable()) {
        if (include == std::string(layer.name) + "/Export.h") return layer.name;
    }
    return {};
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

// A library's header is internal when it is not under the library's include/ folder. host and
// the test-side layers publish nothing, so nothing of theirs counts as internal.
bool isInternalHeader(const std::string& relativePath, const std::string& layer) {
    if (layer == "host" || layer == "tests" || layer == "fuzz" || layer == "bench") return false;
    return relativePath.find("/include/") == std::string::npos;
}

std::string relativeTo(const fs::path& root, const fs::path& file) {
    return fs::relative(file, root).generic_string();
}

// The file a quoted include names, relative to the root; empty when none exists.
std::string resolveInclude(const fs::path& root, const fs::path& includer,
                           const std::string& include) {
    const fs::path beside = includer.parent_path() / include;
    if (fs::is_regular_file(beside)) return relativeTo(root, fs::weakly_canonical(beside));
    for (const std::string& dir : includeRoots()) {
        const fs::path candidate = root / dir / include;
        if (fs::is_regular_file(candidate)) return relativeTo(root, candidate);
    }
    return {};
}

bool hasExtension(const fs::path& file, std::initializer_list<const char*> extensions) {
    const std::string ext = file.extension().string();
    return std::any_of(extensions.begin(), extensions.end(),
                       [&](const char* e) { return ext == e; });
}

std::vector<fs::path> filesOfLayers(const fs::path& root) {
    std::vector<fs::path> files;
    for (const Layer& layer : layerTable()) {
        const fs::path folder = root / layer.folder;
        if (!fs::is_directory(folder)) continue;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file()) files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

void checkIncludes(const fs::path& root, const fs::path& file, std::vector<Violation>& out) {
    const std::string path = relativeTo(root, file);
    const std::string from = layerOf(path);
    std::ifstream in(file);
    std::string text;
    for (int line = 1; std::getline(in, text); ++line) {
        const size_t hash = text.find_first_not_of(" \t");
        if (hash == std::string::npos || !startsWith(text.substr(hash), "#include \"")) continue;
        const size_t open = text.find('"');
        const size_t close = text.find('"', open + 1);
        if (close == std::string::npos) continue;
        const std::string include = text.substr(open + 1, close - open - 1);

        const std::string target = resolveInclude(root, file, include);
        const std::string to = target.empty() ? generatedHeaderLayer(include) : layerOf(target);
        if (to.empty()) {
            out.push_back({path, line, "\"" + include + "\" is no header of the layers"});
        } else if (!mayDependOn(from, to)) {
            out.push_back({path, line, from + " may not include " + to + "'s \"" + include + "\""});
        } else if (to != from && !target.empty() && isInternalHeader(target, to) &&
                   from != "tests") {
            out.push_back({path, line, from + " reaches " + to + "'s internal header " + target});
        }
    }
}

// CMake text with comments removed, kept line for line.
std::vector<std::string> cmakeLines(const fs::path& file) {
    std::vector<std::string> lines;
    std::ifstream in(file);
    std::string text;
    while (std::getline(in, text)) {
        const size_t comment = text.find('#');
        lines.push_back(comment == std::string::npos ? text : text.substr(0, comment));
    }
    return lines;
}

struct Token {
    std::string word;
    int line;
};

// The words of every call to `command` in `lines`, each call's words in order.
std::vector<std::vector<Token>> callsOf(const std::vector<std::string>& lines,
                                        const std::string& command) {
    std::vector<std::vector<Token>> calls;
    std::vector<Token>* current = nullptr;
    for (size_t i = 0; i < lines.size(); ++i) {
        std::string rest = lines[i];
        if (current == nullptr) {
            const size_t at = rest.find(command + "(");
            if (at == std::string::npos ||
                (at > 0 &&
                 (std::isalnum(static_cast<unsigned char>(rest[at - 1])) || rest[at - 1] == '_'))) {
                continue;
            }
            calls.emplace_back();
            current = &calls.back();
            rest = rest.substr(at + command.size() + 1);
        }
        const size_t close = rest.find(')');
        std::istringstream words(close == std::string::npos ? rest : rest.substr(0, close));
        for (std::string word; words >> word;) current->push_back({word, static_cast<int>(i + 1)});
        if (close != std::string::npos) current = nullptr;
    }
    return calls;
}

// A CMake file of the tree: its path below the root and its lines without comments.
struct CMakeFile {
    std::string path;
    std::vector<std::string> lines;
};

// Project targets by name, each with the layer of the CMake file that defines it.
std::map<std::string, std::string> projectTargets(const std::vector<CMakeFile>& cmakeFiles) {
    std::map<std::string, std::string> targets;
    for (const auto& [path, lines] : cmakeFiles) {
        const std::string layer = layerOf(path);
        for (const char* command : {"add_library", "add_executable", "libdrive_shared_library"}) {
            for (const auto& call : callsOf(lines, command)) {
                if (!call.empty() && call[0].word.find('$') == std::string::npos) {
                    targets[call[0].word] = layer;
                }
            }
        }
        for (const auto& call : callsOf(lines, "libdrive_internal_library")) {
            if (!call.empty()) targets[call[0].word + "_internal"] = layer;
        }
    }
    return targets;
}

void checkLinks(const CMakeFile& file, const std::map<std::string, std::string>& targets,
                std::vector<Violation>& out) {
    const std::string& path = file.path;
    const std::vector<std::string>& lines = file.lines;
    const std::string from = layerOf(path);
    std::vector<Token> linked;
    for (const auto& call : callsOf(lines, "target_link_libraries")) {
        linked.insert(linked.end(), call.begin() + (call.empty() ? 0 : 1), call.end());
    }
    for (const char* helper : {"libdrive_test", "libdrive_fuzz_target"}) {
        for (const auto& call : callsOf(lines, helper)) {
            const auto libs = std::find_if(call.begin(), call.end(),
                                           [](const Token& t) { return t.word == "LIBS"; });
            if (libs != call.end()) linked.insert(linked.end(), libs + 1, call.end());
        }
    }
    for (const Token& token : linked) {
        const auto target = targets.find(token.word);
        if (target == targets.end()) continue;  // keywords, system and third-party libraries
        if (!mayDependOn(from, target->second)) {
            out.push_back(
                {path, token.line, from + " may not link " + target->second + "'s " + token.word});
        }
    }
}

}  // namespace

std::string layerOf(const std::string& relativePath) {
    for (const Layer& layer : layerTable()) {
        if (startsWith(relativePath, std::string(layer.folder) + "/")) return layer.name;
    }
    return {};
}

bool mayDependOn(const std::string& from, const std::string& to) {
    // Each layer with every layer it reaches through the table's arrows, worked out once.
    static const std::map<std::string, std::set<std::string>> reachable = [] {
        std::map<std::string, std::set<std::string>> closure;
        for (const Layer& start : layerTable()) {
            std::set<std::string>& reached = closure[start.name];
            std::vector<std::string> pending{start.name};
            while (!pending.empty()) {
                const std::string layer = pending.back();
                pending.pop_back();
                reached.insert(layer);
                for (const Layer& entry : layerTable()) {
                    if (entry.name != layer) continue;
                    for (const std::string& next : entry.below) {
                        if (!reached.count(next)) pending.push_back(next);
                    }
                }
            }
        }
        return closure;
    }();
    const auto found = reachable.find(from);
    return found != reachable.end() && found->second.count(to) != 0;
}

std::vector<Violation> checkTree(const fs::path& root) {
    std::vector<Violation> violations;
    std::vector<CMakeFile> cmakeFiles;
    for (const fs::path& file : filesOfLayers(root)) {
        if (hasExtension(file, {".h", ".cpp", ".inc"})) checkIncludes(root, file, violations);
        if (file.filename() == "CMakeLists.txt" || hasExtension(file, {".cmake"})) {
            cmakeFiles.push_back({relativeTo(root, file), cmakeLines(file)});
        }
    }
    const auto targets = projectTargets(cmakeFiles);
    for (const CMakeFile& file : cmakeFiles) checkLinks(file, targets, violations);
    std::sort(violations.begin(), violations.end(), [](const Violation& a, const Violation& b) {
        return a.file != b.file ? a.file < b.file : a.line < b.line;
    });
    return violations;
}

}  // namespace layers

// The project's layers as the build may use them, and a check of a source tree against them:
// every quoted #include and every CMake link must point down an allowed arrow.
//
// A file's layer is the folder it lives in (platform/os is "os", libDrive is "libDrive", host,
// sim, tests, fuzz, bench). Folders outside the layers (cmake/, scripts/, docs/) are not checked.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace layers {

// One arrow the layers do not allow, or an include that resolves to no file of the tree.
struct Violation {
    std::string file;  // relative to the tree's root, with '/' separators
    int line = 0;      // 1-based
    std::string message;
};

// The layer of `relativePath` (a path below the root, '/' separated); empty outside the layers.
std::string layerOf(const std::string& relativePath);

// True when code of layer `from` may use code of layer `to` (its own layer included).
bool mayDependOn(const std::string& from, const std::string& to);

// Every violation in the tree at `root`: quoted includes of *.h, *.cpp and *.inc files, and the
// libraries named by target_link_libraries and by the LIBS of the test and fuzz helpers in
// CMakeLists.txt and *.cmake files. Sorted by file and line.
std::vector<Violation> checkTree(const std::filesystem::path& root);

}  // namespace layers

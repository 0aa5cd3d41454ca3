#include "TempFile.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kivtest {
namespace {

std::filesystem::path pathOf(const kiv::String& path) { return std::filesystem::path(path.str()); }

}  // namespace

TempFile::TempFile(const std::string& hint, const std::string& bytes) {
    static std::atomic<int> counter{0};
    const auto name = "kiv_test_" + hint + "_" + std::to_string(counter++) + ".tmp";
    const std::filesystem::path path = std::filesystem::temp_directory_path() / name;
    path_ = kiv::String(path.wstring());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TempFile::~TempFile() {
    std::error_code ignored;
    std::filesystem::remove(pathOf(path_), ignored);
}

std::string TempFile::contents() const {
    std::ifstream in(pathOf(path_), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace kivtest

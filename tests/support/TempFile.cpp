#include "support/TempFile.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>
#include <random>

namespace testsupport {
namespace {

// A name no other test, here or in a test program running at the same time, has taken.
std::filesystem::path uniquePath(const std::string& hint, const std::string& suffix) {
    static std::atomic<unsigned> serial{0};
    static const unsigned process = std::random_device{}();
    return std::filesystem::temp_directory_path() /
           ("libdrive-" + hint + "-" + std::to_string(process) + "-" + std::to_string(serial++) +
            suffix);
}

void removeEvenIfReadOnly(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove_all(path, ignored);
}

}  // namespace

TempFile::TempFile(const std::string& hint, std::string_view bytes)
    : path_(uniquePath(hint, ".tmp")), text_(path_.string()) {
    std::ofstream out(path_, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TempFile::~TempFile() { removeEvenIfReadOnly(path_); }

std::string fileContents(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string TempFile::contents() const { return fileContents(path_); }

std::vector<uint8_t> TempFile::bytes() const {
    std::ifstream in(path_, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

TempImage::TempImage(const std::string& hint, uint64_t bytes, ImageFill fill) : TempFile(hint, "") {
    if (fill == ImageFill::Zeros) {
        std::filesystem::resize_file(path(), bytes);
        return;
    }
    std::ofstream out(path(), std::ios::binary | std::ios::trunc);
    std::mt19937_64 random(20240611);
    constexpr uint64_t kChunk = 1 << 20;
    std::vector<uint8_t> chunk;
    for (uint64_t done = 0; done < bytes; done += chunk.size()) {
        const uint64_t piece = std::min(kChunk, bytes - done);
        if (fill == ImageFill::OffsetBytes) {
            chunk = imageBytes(done, piece);
        } else {
            chunk.resize(piece);
            for (uint64_t i = 0; i < piece; i += 8) {
                const uint64_t word = random();
                std::copy_n(reinterpret_cast<const uint8_t*>(&word),
                            std::min<uint64_t>(8, piece - i),
                            chunk.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        out.write(reinterpret_cast<const char*>(chunk.data()), static_cast<std::streamsize>(piece));
    }
}

uint8_t imageByte(uint64_t offset) {
    // A 64-bit mix of the offset's 8-byte word, one byte of it per offset.
    uint64_t word = (offset / 8) * 0x9E3779B97F4A7C15ull;
    word ^= word >> 29;
    word *= 0xBF58476D1CE4E5B9ull;
    word ^= word >> 32;
    return static_cast<uint8_t>(word >> (8 * (offset % 8)));
}

std::vector<uint8_t> imageBytes(uint64_t offset, size_t count) {
    std::vector<uint8_t> bytes(count);
    for (size_t i = 0; i < count; ++i) bytes[i] = imageByte(offset + i);
    return bytes;
}

TempDirectory::TempDirectory(const std::string& hint) : path_(uniquePath(hint, "")) {
    std::filesystem::create_directories(path_);
}

TempDirectory::~TempDirectory() { removeEvenIfReadOnly(path_); }

}  // namespace testsupport

#include "blockdrive/ImageFile.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <random>

namespace blockdrivetest {

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
    for (size_t i = 0; i < count; ++i) {
        bytes[i] = imageByte(offset + i);
    }
    return bytes;
}

ImageFile::ImageFile(const std::string& hint, uint64_t size) {
    static std::atomic<unsigned> serial{0};
    path_ = std::filesystem::temp_directory_path() /
            ("blockdrive-" + hint + "-" + std::to_string(std::random_device{}()) + "-" +
             std::to_string(serial++) + ".img");
    std::ofstream out(path_, std::ios::binary | std::ios::trunc);
    constexpr uint64_t kChunk = 1 << 20;
    for (uint64_t done = 0; done < size;) {
        const uint64_t piece = std::min(kChunk, size - done);
        const std::vector<uint8_t> bytes = imageBytes(done, piece);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(piece));
        done += piece;
    }
}

ImageFile::~ImageFile() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ignored);
    std::filesystem::remove(path_, ignored);
}

std::vector<uint8_t> ImageFile::contents() const {
    std::ifstream in(path_, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

}  // namespace blockdrivetest

// blockdrivetest::ImageFile: a disk image in the temporary directory whose every byte is a known
// function of its offset, so that data read from the wrong place shows. Removed when the test
// ends.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace blockdrivetest {

// The byte an image holds at `offset` (differs between offsets a sector apart).
uint8_t imageByte(uint64_t offset);
// `count` bytes of images from `offset` on.
std::vector<uint8_t> imageBytes(uint64_t offset, size_t count);

class ImageFile {
public:
    // Creates a file of `size` bytes of imageByte() data; its name contains `hint`.
    ImageFile(const std::string& hint, uint64_t size);
    ~ImageFile();
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string pathText() const { return path_.string(); }
    // The file's whole contents now.
    std::vector<uint8_t> contents() const;

private:
    std::filesystem::path path_;
};

}  // namespace blockdrivetest

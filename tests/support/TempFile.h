// Files in the temporary directory that live for one test and are removed when it ends, also
// when the test made them read-only.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

// The whole contents of the file at `path` ("" when it cannot be read).
std::string fileContents(const std::filesystem::path& path);

class TempFile {
public:
    // A new file holding `bytes`; its name contains `hint` and is unique across processes.
    TempFile(const std::string& hint, std::string_view bytes);
    ~TempFile();
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const std::filesystem::path& path() const { return path_; }
    // The path as narrow text (UTF-8 on Linux), for command lines and device names.
    const std::string& text() const { return text_; }
    std::wstring widePath() const { return path_.wstring(); }
    // The file's whole contents now.
    std::string contents() const;
    std::vector<uint8_t> bytes() const;

private:
    std::filesystem::path path_;
    std::string text_;
};

enum class ImageFill {
    Zeros,        // sparse where the filesystem allows
    OffsetBytes,  // imageByte(offset) at every offset: data read from the wrong place shows
    RandomWords,  // 64-bit words of a Mersenne twister with a fixed seed
};

// A disk image: a TempFile of `bytes` bytes filled as `fill` says.
class TempImage : public TempFile {
public:
    TempImage(const std::string& hint, uint64_t bytes, ImageFill fill = ImageFill::Zeros);
};

// The byte an OffsetBytes image holds at `offset` (differs between offsets a sector apart).
uint8_t imageByte(uint64_t offset);
// `count` bytes of an OffsetBytes image from `offset` on.
std::vector<uint8_t> imageBytes(uint64_t offset, size_t count);

// A directory in the temporary directory, removed with everything in it at the end.
class TempDirectory {
public:
    explicit TempDirectory(const std::string& hint);
    ~TempDirectory();
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace testsupport

// A file of a chosen size in the temporary directory, removed again at the end of the test.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace testing_support {

class TempFile {
public:
    explicit TempFile(uintmax_t size, const std::string& stem = "libdrive-test") {
        // Random names: several test programs may run at once.
        static std::random_device entropy;
        path_ = std::filesystem::temp_directory_path() /
                (stem + "-" + std::to_string(entropy()) + "-" + std::to_string(entropy()) + ".img");
        std::ofstream(path_, std::ios::binary | std::ios::trunc).close();
        std::filesystem::resize_file(path_, size);
    }
    ~TempFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    std::string path() const { return path_.string(); }
    std::wstring widePath() const { return path_.wstring(); }

private:
    std::filesystem::path path_;
};

}  // namespace testing_support

// Checksum and fallback files on a test medium, through drivediag's checksum test: the first
// byte chooses which file the rest becomes (and whether an expected digest is given); the file
// is also made into a checksum file by make-checksum-file. The medium is a temporary directory.
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "cli/Drivediag.h"

namespace {

namespace fs = std::filesystem;

// A directory of its own for the process's runs, removed when the process ends.
class Medium {
public:
    Medium()
        : path_(fs::temp_directory_path() /
                ("libdrive-checksum-fuzz-" + std::to_string(std::random_device{}()))) {
        fs::create_directories(path_);
    }
    ~Medium() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

const fs::path& medium() {
    static const Medium made;
    return made.path();
}

std::string utf8(const fs::path& path) {
    const auto text = path.u8string();
    return std::string(text.begin(), text.end());
}

int run(const std::vector<std::string>& args) {
    std::ostringstream out;
    std::ostringstream err;
    return host::runDrivediag(args, {out, err, false});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzinput::useVirtualClock();
    if (size == 0) return 0;
    const bool fallback = (data[0] & 1) != 0;
    const fs::path file = medium() / (fallback ? "FALLBACK.BIN" : "CHECKSUM.BIN");
    std::error_code ignored;
    fs::remove(medium() / (fallback ? "CHECKSUM.BIN" : "FALLBACK.BIN"), ignored);
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data + 1), static_cast<std::streamsize>(size - 1));
    }
    std::vector<std::string> args = {"run",   "checksum",  "--drive-letter",
                                     "E",     "--map",     "E=" + utf8(medium()),
                                     "--yes", "--prompts", "1"};
    if (data[0] & 2) {
        args.insert(args.end(), {"--expected", "d41d8cd98f00b204e9800998ecf8427e"});
    }
    run(args);
    run({"make-checksum-file", utf8(file), utf8(medium() / "MADE.BIN")});
    return 0;
}

// Runs a fuzz target over files, without libFuzzer, so any compiler can replay a corpus as a
// regression test. Arguments are files or directories (every file in them, in name order).
// Exits 1 when no input was found, so a corpus that went missing does not pass silently.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

namespace fs = std::filesystem;

void runOne(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path given(argv[i]);
        if (fs::is_directory(given)) {
            for (const auto& entry : fs::directory_iterator(given)) {
                if (entry.is_regular_file()) inputs.push_back(entry.path());
            }
        } else if (fs::is_regular_file(given)) {
            inputs.push_back(given);
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const fs::path& input : inputs) runOne(input);
    std::printf("%zu inputs run\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}

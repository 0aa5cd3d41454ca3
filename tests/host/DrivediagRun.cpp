#include "DrivediagRun.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "cli/Drivediag.h"

namespace hosttest {

std::string RunOutput::lineWith(const std::vector<std::string>& parts) const {
    for (const std::string& line : lines) {
        bool all = true;
        for (const std::string& part : parts) all = all && line.find(part) != std::string::npos;
        if (all) return line;
    }
    return "";
}

std::size_t RunOutput::countLinesWith(const std::string& part) const {
    std::size_t count = 0;
    for (const std::string& line : lines) count += line.find(part) != std::string::npos;
    return count;
}

RunOutput runDrivediag(const std::vector<std::string>& args) {
    std::ostringstream out;
    std::ostringstream err;
    RunOutput result;
    result.exitCode = host::runDrivediag(args, {out, err, false});
    result.out = out.str();
    result.err = err.str();
    std::istringstream split(result.out);
    for (std::string line; std::getline(split, line);) result.lines.push_back(line);
    return result;
}

TempImage::TempImage(std::size_t bytes) {
    const auto path = std::filesystem::temp_directory_path() /
                      ("drivediag-image-" + std::to_string(std::random_device{}()) + ".img");
    path_ = path.string();
    std::ofstream file(path, std::ios::binary);
    const std::string zeros(bytes, '\0');
    file.write(zeros.data(), static_cast<std::streamsize>(zeros.size()));
}

TempImage::~TempImage() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

}  // namespace hosttest

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

std::string RunOutput::result() const {
    const std::string label = "  Result:";
    for (const std::string& line : lines) {
        if (line.rfind(label, 0) == 0)
            return line.substr(line.find_first_not_of(' ', label.size()));
    }
    return "";
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

}  // namespace hosttest

// Running drivediag in-process for the end-to-end tests, with its output captured.
#pragma once

#include <string>
#include <vector>

namespace hosttest {

struct RunOutput {
    int exitCode = 0;
    std::string out;
    std::string err;
    std::vector<std::string> lines;  // out split at '\n'

    // The first line containing every one of `parts`, or "" when there is none.
    std::string lineWith(const std::vector<std::string>& parts) const;
    std::size_t countLinesWith(const std::string& part) const;
    // What the text summary's "Result:" line says ("FAIL (exit code 1)"), or "".
    std::string result() const;
};

// Runs drivediag with `args` as if from a pipe (no terminal).
RunOutput runDrivediag(const std::vector<std::string>& args);

}  // namespace hosttest

// Runs a test so that an exception escaping it ends the run with a message, not a crash.
#pragma once

#include <exception>
#include <optional>
#include <ostream>

#include "cli/Drivediag.h"
#include "kiv/Exception.h"
#include "quel5/TestResult.h"

namespace host {

// The test's result, or nullopt after writing the escaped exception's text to console.err
// (the caller then exits with kExitSoftware).
template <typename Run>
std::optional<quel5::TestResult> runGuarded(const Console& console, Run run) {
    const char* const prefix = "drivediag: the test ended with an exception: ";
    try {
        return run();
    } catch (const kiv::Exception& e) {
        console.err << prefix << e.getMessage().toUtf8() << "\n";
    } catch (const std::exception& e) {
        console.err << prefix << e.what() << "\n";
    }
    return std::nullopt;
}

}  // namespace host

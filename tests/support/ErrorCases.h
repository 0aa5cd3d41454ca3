// A runner for tables of error-counting cases of a test pass: which sectors fail under which
// limits, and what the pass must come to (its result, how many reads it made, the events it
// raised and the percentage it reported passing with errors).
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "quel5/TestResult.h"
#include "support/RecordingHost.h"

namespace testsupport {

struct ErrorCase {
    const char* name;
    std::vector<std::pair<const char*, const char*>> parameters;  // on top of the pass's own
    std::vector<uint64_t> failing;                                // sectors whose reads fail
    quel5::TestResult result;
    std::size_t reads;                // read operations the drive saw
    std::vector<std::string> events;  // keys of every event raised, in order
    const char* percent;  // "percent" of TEST_PASSED_WITH_ERRORS; "" when it was not raised
};

// What one run of a pass came to.
struct ErrorOutcome {
    quel5::TestResult result;
    std::size_t reads;
};

// The "percent" of the first TEST_PASSED_WITH_ERRORS `host` recorded, or "" when there was none.
inline std::string passedWithErrorsPercent(const RecordingHost& host) {
    const auto warnings = host.eventsWithKey("TEST_PASSED_WITH_ERRORS");
    return warnings.empty() ? "" : warnings[0].get(L"percent").toString().toUtf8();
}

// For every case, under a trace naming it: `runCase(c)` clears `host`, sets the pass up from the
// case, runs it and returns its outcome; then the outcome and what `host` recorded are checked
// against the case.
template <typename RunCase>
void runErrorCases(std::span<const ErrorCase> cases, RecordingHost& host, RunCase runCase) {
    for (const ErrorCase& c : cases) {
        SCOPED_TRACE(c.name);
        const ErrorOutcome outcome = runCase(c);
        EXPECT_EQ(outcome.result, c.result);
        EXPECT_EQ(outcome.reads, c.reads);
        EXPECT_EQ(host.eventKeys(), c.events);
        EXPECT_EQ(passedWithErrorsPercent(host), c.percent);
    }
}

}  // namespace testsupport

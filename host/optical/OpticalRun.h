// drivediag run read-write: the optical write/verify test on a writer named by --device (a
// real one, or an emulated one from an emu: text, optical/EmulatedWriterText.h), with the
// header before it and the summary after it.
#pragma once

#include <optional>
#include <string>

#include "cli/CommandLine.h"
#include "cli/Drivediag.h"
#include "cli/RunReport.h"

namespace host {

// The writer used when read-write is run without --device: an emulated DVD+RW writer, so a new
// user sees a whole run.
inline constexpr const char* kBuiltInWriter = "emu:dvd+rw";

struct OpticalOutcome {
    int exitCode = 0;
    // Set once the test ran: what the report files are written from.
    std::optional<DeviceHeader> header;
    std::optional<RunSummary> summary;
};

OpticalOutcome runOpticalTest(const CommandLine& line, const Console& console);

}  // namespace host

#include "cli/ReportText.h"

#include <cstdio>

#include "cli/ProgressLine.h"
#include "cli/SizeText.h"

namespace host {
namespace {

// Runs of failed sectors a summary shows before it only counts them.
constexpr std::size_t kRunsShown = 20;

std::string field(const std::string& name, const std::string& value) {
    std::string line = "  " + name + ":";
    line.resize(19, ' ');
    return line + value;
}

std::string plural(uint64_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string tallyText(const OperationRecord::Tally& tally) {
    if (tally.operations == 0) return "none";
    std::string text =
        plural(tally.operations, "operation") + ", " + plural(tally.sectors, "sector") + "; ";
    if (tally.failedOperations == 0) return text + "none failed";
    text += std::to_string(tally.failedOperations) + " failed";
    if (!tally.failedSectors.empty())
        text += ", " + plural(tally.failedSectors.sectorCount(), "sector") + ": " +
                sectorRunsText(tally.failedSectors.runs(), kRunsShown);
    return text;
}

// "under 3 ms: 1998, 3-10 ms: 0, ..., failed: 5".
std::string histogramText(const ReadTimes& times) {
    static const char* const names[] = {"",          "under 3 ms", "3-10 ms",     "10-50 ms",
                                        "50-150 ms", "150-500 ms", "over 500 ms", "failed"};
    std::string text;
    for (std::size_t i = 1; i < kTimeClasses; ++i)
        text += (i > 1 ? ", " : "") + std::string(names[i]) + ": " +
                std::to_string(times.histogram()[i]);
    return text;
}

std::string slowestText(const ReadTimes& times) {
    std::string text;
    for (const TimedRead& read : times.slowest())
        text += (text.empty() ? "" : ", ") + std::string("sector ") + std::to_string(read.sector) +
                " (" + std::to_string(read.ms) + " ms)";
    return text;
}

// "11080 kB/s, 8310 kB/s, the drive's maximum".
std::string speedsText(const std::vector<unsigned int>& speeds) {
    std::string text;
    for (unsigned int speed : speeds)
        text += (text.empty() ? "" : ", ") + (speed == 0xFFFF ? std::string("the drive's maximum")
                                                              : std::to_string(speed) + " kB/s");
    return text;
}

std::string rateText(double bytesPerSecond) {
    return binarySizeText(static_cast<uint64_t>(bytesPerSecond)) + "/s";
}

}  // namespace

std::string sectorRunsText(const std::vector<SectorRun>& runs, std::size_t limit) {
    std::string text;
    for (std::size_t i = 0; i < runs.size() && i < limit; ++i) {
        if (!text.empty()) text += ", ";
        text += std::to_string(runs[i].first);
        if (runs[i].count > 1) text += "-" + std::to_string(runs[i].first + runs[i].count - 1);
    }
    if (runs.size() > limit) text += " and " + plural(runs.size() - limit, "more run");
    return text;
}

std::vector<std::string> headerLines(const DeviceHeader& header) {
    std::vector<std::string> lines{"Device:  " + header.device + " (" + header.kind + ")"};
    if (header.kind == "test medium") return lines;
    if (!header.model.empty() || !header.serial.empty())
        lines.push_back("  Model: " + (header.model.empty() ? "unknown" : header.model) +
                        "  Serial: " + (header.serial.empty() ? "unknown" : header.serial));
    if (!header.medium.empty()) lines.push_back("  Medium: " + header.medium);
    const uint64_t bytes = header.totalSectors * header.sectorBytes;
    lines.push_back("  Capacity: " + plural(header.totalSectors, "sector") + ", " +
                    binarySizeText(bytes) + " (" + std::to_string(bytes) + " bytes)");
    lines.push_back("  Sector size: " + std::to_string(header.sectorBytes) + " bytes logical, " +
                    (header.physicalSectorBytes == 0
                         ? std::string("physical unknown")
                         : std::to_string(header.physicalSectorBytes) + " physical"));
    if (header.directIo)
        lines.push_back(std::string("  Direct I/O: ") +
                        (*header.directIo ? "on" : "off (through the system's cache)"));
    return lines;
}

std::string rangeLine(const TestedRange& range) {
    std::string line = "Range:   sectors " + std::to_string(range.first) + " to " +
                       (range.end == 0 ? std::string("0") : std::to_string(range.end - 1)) + " (" +
                       plural(range.end - range.first, "sector") + "); ";
    if (range.seeks > 0) return line + plural(range.seeks, "seek");
    char percent[32];
    std::snprintf(percent, sizeof percent, "%g %%", range.percent);
    return line + "testing " + plural(range.sectorsToTest, "sector") + " (" + percent + ")";
}

std::vector<std::string> summaryLines(const RunSummary& summary) {
    std::vector<std::string> lines{"Summary:"};
    if (summary.operations) {
        lines.push_back(field("Reads", tallyText(summary.operations->reads())));
        lines.push_back(field("Writes", tallyText(summary.operations->writes())));
    }
    if (!summary.speeds.empty()) lines.push_back(field("Speeds set", speedsText(summary.speeds)));
    if (summary.readTimes != nullptr) {
        lines.push_back(field("Read times", histogramText(*summary.readTimes)));
        if (!summary.readTimes->slowest().empty())
            lines.push_back(field("Slowest reads", slowestText(*summary.readTimes)));
    }
    lines.push_back(field("Compare errors", std::to_string(summary.compareErrors)));
    std::string time = formatDuration(static_cast<unsigned int>(summary.elapsedMs / 1000));
    if (summary.bytesPerSecond() > 0.0) time += ", " + rateText(summary.bytesPerSecond());
    lines.push_back(field("Time", time));
    lines.push_back(field("Reached", std::to_string(summary.percentReached) + " % of the pass"));
    lines.push_back(
        field("Result", summary.result + " (exit code " + std::to_string(summary.exitCode) + ")"));
    if (summary.passedWithFailures()) {
        std::string failures;
        if (summary.failedOperations() > 0)
            failures = plural(summary.failedOperations(), "transfer");
        if (summary.compareErrors > 0)
            failures +=
                (failures.empty() ? "" : " and ") + plural(summary.compareErrors, "compare");
        lines.push_back("Note: PASS under the test's error rules, but " + failures +
                        " failed (see above): the drive is not free of errors.");
    }
    return lines;
}

}  // namespace host

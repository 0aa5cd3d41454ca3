#include "cli/ReportFiles.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "drives/Utf8Path.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// Writes through `fill` to a temporary file beside `path`, then renames it over `path`.
template <typename Fill>
bool replaceFile(const std::string& path, std::string* error, Fill fill) {
    const fs::path target = pathFromUtf8(path);
    fs::path temporary = target;
    temporary += ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (out) fill(out);
        out.flush();
        if (!out) {
            *error = "cannot write " + path;
            std::error_code ignored;
            fs::remove(temporary, ignored);
            return false;
        }
    }
    std::error_code failure;
    fs::rename(temporary, target, failure);
    if (failure) {
        *error = "cannot write " + path + ": " + failure.message();
        fs::remove(temporary, failure);
        return false;
    }
    return true;
}

// A Prometheus label value: backslash, double quote and line feed escaped.
std::string labelValue(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\' || c == '"') escaped += '\\';
        escaped += c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return escaped;
}

std::string number(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

class Exposition {
public:
    explicit Exposition(std::string labels) : labels_(std::move(labels)) {}

    void family(const std::string& name, const std::string& help) {
        text_ += "# HELP " + name + " " + help + "\n# TYPE " + name + " gauge\n";
        name_ = name;
    }
    void sample(double value, const std::string& extraLabels = "") {
        text_ += name_ + "{" + labels_ + extraLabels + "} " + number(value) + "\n";
    }
    const std::string& text() const { return text_; }

private:
    std::string labels_;
    std::string name_;
    std::string text_;
};

}  // namespace

bool writeBadBlocksFile(const std::string& path, const RunSummary& summary, std::string* error) {
    SectorRuns failed;
    if (summary.operations) {
        for (const auto* tally : {&summary.operations->reads(), &summary.operations->writes()}) {
            for (const SectorRun& run : tally->failedSectors.runs())
                failed.add(run.first, run.count);
        }
    }
    return replaceFile(path, error, [&](std::ofstream& out) {
        for (const SectorRun& run : failed.runs()) {
            for (uint64_t sector = run.first; sector < run.first + run.count; ++sector)
                out << sector << '\n';
        }
    });
}

std::string metricsText(const DeviceHeader& header, const RunSummary& summary) {
    Exposition metrics("device=\"" + labelValue(header.device) + "\",test=\"" +
                       labelValue(summary.test) + "\"");
    metrics.family("drivediag_passed", "1 when the last run's result was PASS, else 0.");
    metrics.sample(summary.result == "PASS" ? 1 : 0,
                   ",result=\"" + labelValue(summary.result) + "\"");
    metrics.family("drivediag_exit_code", "Exit code of the last run.");
    metrics.sample(summary.exitCode);
    if (summary.operations) {
        const OperationRecord::Tally* tallies[] = {&summary.operations->reads(),
                                                   &summary.operations->writes()};
        const char* kinds[] = {"read", "write"};
        metrics.family("drivediag_operations", "Transfers the last run issued.");
        for (int i = 0; i < 2; ++i)
            metrics.sample(static_cast<double>(tallies[i]->operations),
                           std::string(",operation=\"") + kinds[i] + "\"");
        metrics.family("drivediag_failed_operations", "Transfers of the last run that failed.");
        for (int i = 0; i < 2; ++i)
            metrics.sample(static_cast<double>(tallies[i]->failedOperations),
                           std::string(",operation=\"") + kinds[i] + "\"");
        metrics.family("drivediag_failed_sectors", "Sectors in failed transfers of the last run.");
        for (int i = 0; i < 2; ++i)
            metrics.sample(static_cast<double>(tallies[i]->failedSectors.sectorCount()),
                           std::string(",operation=\"") + kinds[i] + "\"");
    }
    metrics.family("drivediag_compare_errors", "Sectors that read back different in the last run.");
    metrics.sample(static_cast<double>(summary.compareErrors));
    metrics.family("drivediag_throughput_bytes_per_second",
                   "Bytes read and written per second over the last run.");
    metrics.sample(summary.bytesPerSecond());
    metrics.family("drivediag_duration_seconds", "How long the last run took.");
    metrics.sample(static_cast<double>(summary.elapsedMs) / 1000.0);
    return metrics.text();
}

bool writeReportFile(const std::string& path, const std::string& text, std::string* error) {
    return replaceFile(path, error, [&](std::ofstream& out) { out << text; });
}

}  // namespace host

#include "cli/ReportJson.h"

#include "cli/Json.h"

namespace host {
namespace {

// Failed runs a summary line lists; --bad-blocks has them all.
constexpr std::size_t kRunsListed = 1000;

std::string tallyJson(const OperationRecord::Tally& tally) {
    const std::vector<SectorRun> runs = tally.failedSectors.runs();
    std::string list = "[";
    for (std::size_t i = 0; i < runs.size() && i < kRunsListed; ++i) {
        if (i > 0) list += ",";
        list += "[" + std::to_string(runs[i].first) + "," + std::to_string(runs[i].count) + "]";
    }
    list += "]";
    return JsonObject()
        .number("operations", tally.operations)
        .number("sectors", tally.sectors)
        .number("failedOperations", tally.failedOperations)
        .number("failedSectors", tally.failedSectors.sectorCount())
        .raw("failedRuns", list)
        .boolean("failedRunsComplete", runs.size() <= kRunsListed)
        .str();
}

std::string readTimesJson(const ReadTimes& times) {
    static const char* const names[] = {"",           "under3ms",   "under10ms", "under50ms",
                                        "under150ms", "under500ms", "over500ms", "failed"};
    JsonObject histogram;
    for (std::size_t i = 1; i < kTimeClasses; ++i) histogram.number(names[i], times.histogram()[i]);
    std::string slowest = "[";
    for (const TimedRead& read : times.slowest()) {
        if (slowest.size() > 1) slowest += ",";
        slowest += JsonObject().number("sector", read.sector).number("ms", read.ms).str();
    }
    return JsonObject().raw("histogram", histogram.str()).raw("slowest", slowest + "]").str();
}

JsonObject rangeFields(JsonObject object, const TestedRange& range) {
    object.number("first", range.first)
        .number("end", range.end)
        .number("sectorsToTest", range.sectorsToTest)
        .number("seeks", range.seeks)
        .decimal("percent", range.percent);
    return object;
}

}  // namespace

std::string headerJson(const DeviceHeader& header) {
    JsonObject object = JsonObject::record("device");
    object.text("device", header.device)
        .text("kind", header.kind)
        .text("model", header.model)
        .text("serial", header.serial)
        .number("totalSectors", header.totalSectors)
        .number("totalBytes", header.totalSectors * header.sectorBytes)
        .number("sectorBytes", header.sectorBytes)
        .number("physicalSectorBytes", header.physicalSectorBytes);
    if (header.medium.empty()) {
        object.raw("medium", "null");
    } else {
        object.text("medium", header.medium);
    }
    if (header.directIo) {
        object.boolean("directIo", *header.directIo);
    } else {
        object.raw("directIo", "null");
    }
    return object.str();
}

std::string rangeJson(const TestedRange& range) {
    return rangeFields(JsonObject::record("range"), range).str();
}

std::string summaryJson(const RunSummary& summary) {
    JsonObject object = JsonObject::record("summary");
    object.text("test", summary.test)
        .text("result", summary.result)
        .signedNumber("exitCode", summary.exitCode)
        .boolean("passedWithFailures", summary.passedWithFailures())
        .raw("range", summary.range ? rangeFields(JsonObject(), *summary.range).str() : "null");
    if (summary.operations) {
        object.raw("reads", tallyJson(summary.operations->reads()))
            .raw("writes", tallyJson(summary.operations->writes()));
    } else {
        object.raw("reads", "null").raw("writes", "null");
    }
    object.raw("readTimes",
               summary.readTimes != nullptr ? readTimesJson(*summary.readTimes) : "null");
    std::string speeds = "[";
    for (unsigned int speed : summary.speeds)
        speeds += (speeds.size() > 1 ? "," : "") + std::to_string(speed);
    object.raw("speeds", speeds + "]");
    return object.number("compareErrors", summary.compareErrors)
        .number("elapsedMs", summary.elapsedMs)
        .decimal("bytesPerSecond", summary.bytesPerSecond())
        .number("percentReached", summary.percentReached)
        .str();
}

}  // namespace host

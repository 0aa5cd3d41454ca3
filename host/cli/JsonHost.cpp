#include "cli/ConsoleHost.h"
#include "cli/Json.h"
#include "cli/ReportJson.h"
#include "os/Clock.h"

namespace host {
namespace {

const char* severityName(quel5::Severity severity) {
    switch (severity) {
        case quel5::Severity::WARNING:
            return "warning";
        case quel5::Severity::INFORMATIVE:
            return "informative";
        case quel5::Severity::ERROR:
            return "error";
    }
    return "event";
}

}  // namespace

void JsonHost::runStarting(const RunDescription& run) {
    JsonObject parameters;
    for (const auto& [key, value] : run.parameters) parameters.text(key, value);
    writeLine(JsonObject::record("start")
                  .text("test", run.test)
                  .text("device", run.device)
                  .raw("parameters", parameters.str())
                  .str());
    startPass();
}

void JsonHost::deviceDescribed(const DeviceHeader& header) { writeLine(headerJson(header)); }

void JsonHost::rangeResolved(const TestedRange& range) { writeLine(rangeJson(range)); }

void JsonHost::runFinished(const RunSummary& summary) {
    writePercent(summary.percentReached);
    writeLine(summaryJson(summary));
    writeLine(JsonObject::record("result")
                  .text("result", summary.result)
                  .signedNumber("exitCode", summary.exitCode)
                  .str());
}

void JsonHost::libraryRegistered(const QuelString& name) {
    writeLine(JsonObject::record("library").text("name", name.toUtf8()).str());
}

void JsonHost::showEvent(quel5::Severity severity, const quel5::Event& event,
                         const QuelString& source, int line) {
    writeLine(JsonObject::record("event")
                  .text("severity", severityName(severity))
                  .text("key", event.key().toUtf8())
                  .text("text", eventMessage(event))
                  .raw("variables", jsonVariables(event.variables()))
                  .text("source", source.toUtf8())
                  .signedNumber("line", line)
                  .str());
}

void JsonHost::progress(const quel5::LocalizedString& text, double intervalMs) {
    const uint64_t now = os::nowMilliseconds();
    if (!progressLines_.admit(intervalMs, now)) return;
    JsonObject object = JsonObject::record("progress");
    object.text("key", text.key().toUtf8())
        .text("text", text.localizedString().toUtf8())
        .raw("variables", jsonVariables(text.variables()));
    if (intervalMs > 0) object.number("intervalMs", static_cast<uint64_t>(intervalMs));
    writeLine(object.str());
    if (const auto seconds = progress_.secondsLeft(now))
        writeLine(JsonObject::record("timeLeft").number("seconds", *seconds).str());
}

void JsonHost::percentDone(unsigned int percent) {
    if (progress_.percentDone(percent) &&
        percentLines_.admit(IntervalGate::kDefaultIntervalMs, os::nowMilliseconds()))
        writePercent(progress_.shown());
}

void JsonHost::resetPercentDone() {
    // The pass that ends here closed with 100 or stopped short; say which before the next.
    writePercent(percentReached());
    startPass();
    writeLine(JsonObject::record("resetPercent").str());
    writtenPercent_.reset();
}

void JsonHost::estimatedTimeLeft(unsigned int seconds) { progress_.libraryEstimate(seconds); }

void JsonHost::messageBoxCancelled(const quel5::MessageBox2& box) {
    writeLine(JsonObject::record("messageBoxCancelled").text("title", box.title().toUtf8()).str());
}

void JsonHost::messageBoxAnswered(const quel5::MessageBox2& box, int answer) {
    writeLine(JsonObject::record("messageBox")
                  .text("title", box.title().toUtf8())
                  .text("message", box.message().toUtf8())
                  .number("buttons", box.options().buttons)
                  .text("answer", answerName(answer))
                  .str());
}

void JsonHost::writePercent(unsigned int percent) {
    if (writtenPercent_ == percent) return;
    writtenPercent_ = percent;
    writeLine(JsonObject::record("percent").number("percent", percent).str());
}

void JsonHost::writeLine(const std::string& json) {
    out() << json << "\n";
    out().flush();
}

}  // namespace host

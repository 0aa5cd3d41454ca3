#include "cli/ConsoleHost.h"
#include "cli/Json.h"

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
    writeLine(JsonObject()
                  .text("type", "start")
                  .text("test", run.test)
                  .text("device", run.device)
                  .raw("parameters", parameters.str())
                  .str());
}

void JsonHost::runFinished(const quel5::TestResult& result, int exitCode) {
    writeLine(JsonObject()
                  .text("type", "result")
                  .text("result", result.name())
                  .signedNumber("exitCode", exitCode)
                  .str());
}

void JsonHost::libraryRegistered(const QuelString& name) {
    writeLine(JsonObject().text("type", "library").text("name", name.toUtf8()).str());
}

void JsonHost::eventRaised(quel5::Severity severity, const quel5::Event& event,
                           const QuelString& source, int line) {
    writeLine(JsonObject()
                  .text("type", "event")
                  .text("severity", severityName(severity))
                  .text("key", event.key().toUtf8())
                  .text("text", eventMessage(event))
                  .raw("variables", jsonVariables(event.variables()))
                  .text("source", source.toUtf8())
                  .signedNumber("line", line)
                  .str());
}

void JsonHost::progress(const quel5::LocalizedString& text, double intervalMs) {
    JsonObject object;
    object.text("type", "progress")
        .text("key", text.key().toUtf8())
        .text("text", text.localizedString().toUtf8())
        .raw("variables", jsonVariables(text.variables()));
    if (intervalMs > 0) object.number("intervalMs", static_cast<uint64_t>(intervalMs));
    writeLine(object.str());
}

void JsonHost::percentDone(unsigned int percent) {
    writeLine(JsonObject().text("type", "percent").number("percent", percent).str());
}

void JsonHost::resetPercentDone() { writeLine(JsonObject().text("type", "resetPercent").str()); }

void JsonHost::estimatedTimeLeft(unsigned int seconds) {
    writeLine(JsonObject().text("type", "timeLeft").number("seconds", seconds).str());
}

void JsonHost::messageBoxCancelled(const quel5::MessageBox2& box) {
    writeLine(
        JsonObject().text("type", "messageBoxCancelled").text("title", box.title().toUtf8()).str());
}

void JsonHost::messageBoxAnswered(const quel5::MessageBox2& box, int answer) {
    writeLine(JsonObject()
                  .text("type", "messageBox")
                  .text("title", box.title().toUtf8())
                  .text("message", box.message().toUtf8())
                  .number("buttons", box.options().buttons)
                  .text("answer", answerName(answer))
                  .str());
}

void JsonHost::writeLine(const std::string& json) {
    out() << json << "\n";
    out().flush();
}

}  // namespace host

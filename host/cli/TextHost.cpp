#include "cli/ConsoleHost.h"
#include "cli/ProgressLine.h"
#include "os/Clock.h"

namespace host {
namespace {

const char* severityName(quel5::Severity severity) {
    switch (severity) {
        case quel5::Severity::WARNING:
            return "WARNING";
        case quel5::Severity::INFORMATIVE:
            return "INFO";
        case quel5::Severity::ERROR:
            return "ERROR";
    }
    return "EVENT";
}

}  // namespace

void TextHost::runStarting(const RunDescription& run) {
    std::string line = "Running " + run.test + " on " + run.device;
    if (!run.parameters.empty()) {
        line += " with";
        for (const auto& [key, value] : run.parameters) line += " " + key + "=" + value;
    }
    printLine(line);
}

void TextHost::runFinished(const quel5::TestResult& result, int exitCode) {
    endProgressLine();
    printLine("Result: " + std::string(result.name()) + " (exit code " + std::to_string(exitCode) +
              ")");
}

void TextHost::libraryRegistered(const QuelString&) {}

void TextHost::eventRaised(quel5::Severity severity, const quel5::Event& event,
                           const QuelString& source, int line) {
    printLine(std::string(severityName(severity)) + ": " + eventMessage(event) + "  [" +
              event.key().toUtf8() + ", " + source.toUtf8() + ":" + std::to_string(line) + "]");
}

void TextHost::progress(const quel5::LocalizedString& text, double intervalMs) {
    progressText_ = text.localizedString().toUtf8();
    if (terminal_) {
        redrawProgress();
        return;
    }
    // A timed report may come with every read; as lines of a file it is kept to one per
    // interval.
    const uint64_t now = os::nowMilliseconds();
    if (intervalMs > 0.0 && lastProgressLineMs_ &&
        static_cast<double>(now - *lastProgressLineMs_) < intervalMs) {
        return;
    }
    lastProgressLineMs_ = now;
    out() << progressLine(percent_, progressText_, secondsLeft_) << "\n";
}

void TextHost::percentDone(unsigned int percent) {
    percent_ = percent;
    if (terminal_) redrawProgress();
}

void TextHost::resetPercentDone() {
    percent_ = 0;
    secondsLeft_.reset();
    if (terminal_) redrawProgress();
}

void TextHost::estimatedTimeLeft(unsigned int seconds) {
    secondsLeft_ = seconds;
    if (terminal_) redrawProgress();
}

void TextHost::messageBoxCancelled(const quel5::MessageBox2& box) {
    printLine("PROMPT WITHDRAWN: " + box.title().toUtf8());
}

void TextHost::messageBoxAnswered(const quel5::MessageBox2& box, int answer) {
    printLine("PROMPT: " + box.title().toUtf8() + ": " + box.message().toUtf8() + " -> " +
              answerName(answer));
}

void TextHost::printLine(const std::string& line) {
    const bool hadProgress = progressShown_;
    if (hadProgress) {
        // Overwrite the progress line, then draw it again below the new line.
        out() << "\r" << std::string(shownWidth_, ' ') << "\r";
        progressShown_ = false;
    }
    out() << line << "\n";
    if (hadProgress) redrawProgress();
    out().flush();
}

void TextHost::redrawProgress() {
    const std::string line = progressLine(percent_, progressText_, secondsLeft_);
    out() << "\r" << line;
    if (line.size() < shownWidth_) out() << std::string(shownWidth_ - line.size(), ' ');
    shownWidth_ = line.size();
    progressShown_ = true;
    out().flush();
}

void TextHost::endProgressLine() {
    if (!progressShown_) return;
    out() << "\n";
    progressShown_ = false;
    shownWidth_ = 0;
}

}  // namespace host

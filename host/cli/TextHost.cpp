#include "cli/ConsoleHost.h"
#include "cli/ProgressLine.h"
#include "cli/ReportText.h"
#include "os/Clock.h"

namespace host {
namespace {

bool sameRange(const TestedRange& a, const TestedRange& b) {
    return a.first == b.first && a.end == b.end && a.sectorsToTest == b.sectorsToTest &&
           a.seeks == b.seeks;
}

}  // namespace

void TextHost::runStarting(const RunDescription& run) {
    std::string line = "Running " + run.test + " on " + run.device;
    if (!run.parameters.empty()) {
        line += " with";
        // An option that is a flag (the read-write test's --blank-only) stands alone.
        for (const auto& [key, value] : run.parameters)
            line += " " + key + (value.empty() && key.rfind("--", 0) == 0 ? "" : "=" + value);
    }
    printLine(line);
    startPass();
}

void TextHost::deviceDescribed(const DeviceHeader& header) {
    for (const std::string& line : headerLines(header)) printLine(line);
}

void TextHost::rangeResolved(const TestedRange& range) {
    // A rerun settles on the same range: say it once.
    if (shownRange_ && sameRange(*shownRange_, range)) return;
    shownRange_ = range;
    printLine(rangeLine(range));
}

void TextHost::runFinished(const RunSummary& summary) {
    if (progressShown_) drawProgress(progressLine(summary.percentReached, progressText_, {}));
    endProgressLine();
    for (const std::string& line : summaryLines(summary)) printLine(line);
}

void TextHost::libraryRegistered(const QuelString&) {}

void TextHost::showEvent(quel5::Severity severity, const quel5::Event& event, const QuelString&,
                         int) {
    printLine(std::string(severityWord(severity)) + ": " + eventMessage(event));
}

void TextHost::progress(const quel5::LocalizedString& text, double intervalMs) {
    progressText_ = text.localizedString().toUtf8();
    if (terminal_) {
        redrawProgress(progress_.shown());
        return;
    }
    // A timed report may come with every read; as lines of a file it is kept to one per
    // interval.
    const uint64_t now = os::nowMilliseconds();
    if (!lines_.admit(intervalMs, now)) return;
    out() << progressLine(progress_.shown(), progressText_, progress_.secondsLeft(now)) << "\n";
}

void TextHost::percentDone(unsigned int percent) {
    if (progress_.percentDone(percent) && terminal_) redrawProgress(progress_.shown());
}

void TextHost::resetPercentDone() {
    startPass();
    if (terminal_) redrawProgress(progress_.shown());
}

void TextHost::estimatedTimeLeft(unsigned int seconds) { progress_.libraryEstimate(seconds); }

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
    if (hadProgress) redrawProgress(progress_.shown());
    out().flush();
}

void TextHost::redrawProgress(unsigned int percent) {
    drawProgress(
        progressLine(percent, progressText_, progress_.secondsLeft(os::nowMilliseconds())));
}

void TextHost::drawProgress(const std::string& line) {
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

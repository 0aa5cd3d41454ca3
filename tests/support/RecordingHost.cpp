#include "support/RecordingHost.h"

#include <utility>

#include "os/Clock.h"
#include "quel5/MessageBox2.h"

namespace testsupport {

std::string utf8(const QuelString& text) { return text.toUtf8(); }

quel5::Value RecordedVariables::get(const QuelString& name) const {
    for (const auto& [variableName, value] : variables) {
        if (variableName == name) return value;
    }
    return quel5::Value();
}

RecordingHost::RecordingHost() : defaultAnswer_(quel5::MB2_OK) {}

RecordingHost::~RecordingHost() = default;

std::vector<Report> RecordingHost::reports() const {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    return reports_;
}

std::vector<EventReport> RecordingHost::eventsWithKey(const std::string& key) const {
    std::vector<EventReport> found;
    for (EventReport& event : events()) {
        if (event.key == key) found.push_back(std::move(event));
    }
    return found;
}

std::vector<std::string> RecordingHost::eventKeys() const {
    std::vector<std::string> keys;
    for (const EventReport& event : events()) keys.push_back(event.key);
    return keys;
}

namespace {

// "SEVERITY KEY@source", then `where` (":line" or nothing) and "{Name=Value,...}".
std::string summaryOf(const EventReport& event, const std::string& where) {
    static const char* const severities[] = {"WARNING", "INFORMATIVE", "ERROR"};
    std::string text = std::string(severities[static_cast<int>(event.severity)]) + " " + event.key +
                       "@" + event.source + where;
    for (std::size_t i = 0; i < event.variables.size(); ++i) {
        text += (i == 0 ? "{" : ",") + utf8(event.variables[i].first) + "=" +
                utf8(event.variables[i].second.toString());
    }
    return event.variables.empty() ? text : text + "}";
}

// One report as timeline() shows it.
struct TimelineLine {
    std::string operator()(const EventReport& r) const {
        return summaryOf(r, ":" + std::to_string(r.line));
    }
    std::string operator()(const ProgressReport& r) const {
        if (r.intervalMs == 0.0) return "progress " + r.text;
        return "progress every " + std::to_string(static_cast<long long>(r.intervalMs)) + " ms " +
               r.text;
    }
    std::string operator()(const PercentReport& r) const {
        return "percent " + std::to_string(r.percent);
    }
    std::string operator()(const ResetPercentReport&) const { return "reset percent"; }
    std::string operator()(const TimeLeftReport& r) const {
        return "time left " + std::to_string(r.seconds);
    }
    std::string operator()(const MessageBoxReport& r) const { return "message box " + r.message; }
    std::string operator()(const MessageBoxCancelReport& r) const { return "cancel " + r.message; }
    std::string operator()(const LibraryReport& r) const { return "library " + r.name; }
};

}  // namespace

std::vector<std::string> RecordingHost::eventSummaries() const {
    std::vector<std::string> summaries;
    for (const EventReport& event : events()) summaries.push_back(summaryOf(event, ""));
    return summaries;
}

std::vector<std::string> RecordingHost::timeline() const {
    std::vector<std::string> lines;
    for (const Report& report : reports()) lines.push_back(std::visit(TimelineLine{}, report));
    return lines;
}

std::vector<unsigned int> RecordingHost::percents() const {
    std::vector<unsigned int> values;
    for (const PercentReport& report : all<PercentReport>()) values.push_back(report.percent);
    return values;
}

std::optional<unsigned int> RecordingHost::lastPercent() const {
    const std::vector<unsigned int> values = percents();
    if (values.empty()) return std::nullopt;
    return values.back();
}

std::vector<unsigned int> RecordingHost::timesLeft() const {
    std::vector<unsigned int> values;
    for (const TimeLeftReport& report : all<TimeLeftReport>()) values.push_back(report.seconds);
    return values;
}

std::vector<std::string> RecordingHost::libraries() const {
    std::vector<std::string> names;
    for (const LibraryReport& report : all<LibraryReport>()) names.push_back(report.name);
    return names;
}

unsigned int RecordingHost::stopPolls() const {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    return polls_;
}

void RecordingHost::clear() {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    reports_.clear();
    polls_ = 0;
}

void RecordingHost::stopAfterPolls(unsigned int polls) {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    pollsBeforeStop_ = polls;
}

void RecordingHost::neverStop() {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    pollsBeforeStop_.reset();
}

void RecordingHost::queueAnswers(std::vector<int> answers) {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    answers_.insert(answers_.end(), answers.begin(), answers.end());
}

void RecordingHost::setDefaultAnswer(int answer) {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    defaultAnswer_ = answer;
}

void RecordingHost::setCanShowMessageBoxes(bool canShow) {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    canShowMessageBoxes_ = canShow;
}

void RecordingHost::record(Report report) {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    reports_.push_back(std::move(report));
}

void RecordingHost::libraryRegistered(const QuelString& name) {
    record(LibraryReport{os::nowMilliseconds(), utf8(name)});
}

void RecordingHost::eventRaised(quel5::Severity severity, const quel5::Event& event,
                                const QuelString& source, int line) {
    EventReport report;
    report.variables = event.variables();
    report.timeMs = os::nowMilliseconds();
    report.severity = severity;
    report.key = utf8(event.key());
    report.source = utf8(source);
    report.line = line;
    record(std::move(report));
}

void RecordingHost::progress(const quel5::LocalizedString& text, double intervalMs) {
    ProgressReport report;
    report.variables = text.variables();
    report.timeMs = os::nowMilliseconds();
    report.key = utf8(text.key());
    report.text = utf8(localize(text.key(), text.variables()));
    report.intervalMs = intervalMs;
    record(std::move(report));
}

void RecordingHost::percentDone(unsigned int percent) {
    record(PercentReport{os::nowMilliseconds(), percent});
}

void RecordingHost::resetPercentDone() { record(ResetPercentReport{os::nowMilliseconds()}); }

void RecordingHost::estimatedTimeLeft(unsigned int seconds) {
    record(TimeLeftReport{os::nowMilliseconds(), seconds});
}

bool RecordingHost::stopRequested() {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    ++polls_;
    if (!pollsBeforeStop_) return false;
    if (*pollsBeforeStop_ == 0) return true;
    --*pollsBeforeStop_;
    return false;
}

bool RecordingHost::showMessageBox(const quel5::MessageBox2& box, int* answer) {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    MessageBoxReport report;
    report.timeMs = os::nowMilliseconds();
    report.message = utf8(box.message());
    report.title = utf8(box.title());
    report.type = box.type();
    report.buttons = box.options().buttons;
    report.look = box.look();
    report.modal = box.modal();
    report.shown = canShowMessageBoxes_;
    if (report.shown) {
        if (!answers_.empty()) {
            report.answer = answers_.front();
            answers_.pop_front();
        } else {
            report.answer = defaultAnswer_;
        }
        if (answer) *answer = report.answer;
    }
    record(std::move(report));
    return canShowMessageBoxes_;
}

void RecordingHost::messageBoxCancelled(const quel5::MessageBox2& box) {
    record(MessageBoxCancelReport{os::nowMilliseconds(), utf8(box.message())});
}

QuelString RecordingHost::localize(const QuelString& key, const quel5::Variables& variables) {
    if (variables.empty()) return key;
    kiv::String text = key.kivString() + kiv::String(L"{");
    for (std::size_t i = 0; i < variables.size(); ++i) {
        if (i > 0) text += kiv::String(L",");
        text += variables[i].first.kivString() + kiv::String(L"=") + variables[i].second.toString();
    }
    text += kiv::String(L"}");
    return QuelString(text);
}

ScopedHost::ScopedHost(quel5::Host& host) : previous_(quel5::installedHost()) {
    quel5::Registry::instance().clearAllParameters();
    quel5::installHost(&host);
}

ScopedHost::~ScopedHost() {
    quel5::installHost(previous_);
    quel5::Registry::instance().clearAllParameters();
}

}  // namespace testsupport

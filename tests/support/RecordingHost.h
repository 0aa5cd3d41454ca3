// testsupport::RecordingHost: a quel5::Host for tests. It keeps every report in arrival order,
// answers stop polls and message boxes from a script, and resolves texts to "KEY{Name=Value,...}"
// so that tests can assert on the variables a text was shown with.
//
// Typical use:
//     testsupport::RecordingHost host;
//     testsupport::ScopedHost installed(host);   // installs it, clears every parameter
//     host.stopAfterPolls(3);
//     ... run the code under test ...
//     EXPECT_EQ(host.eventKeys(), (std::vector<std::string>{"TEST_ABORTED"}));
//
// Every report carries the time of the one clock (os::nowMilliseconds) at which it arrived, so
// tests running on a virtual clock can check throttling. All members are thread-safe.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "quel5/Host.h"
#include "quel5/Registry.h"

namespace testsupport {

// A variable list as recorded, with lookup by name.
struct RecordedVariables {
    quel5::Variables variables;

    // The value of `name`, or a value of kind NONE when the variable was not set.
    quel5::Value get(const QuelString& name) const;
};

struct EventReport : RecordedVariables {
    uint64_t timeMs = 0;
    quel5::Severity severity = quel5::Severity::INFORMATIVE;
    std::string key;     // UTF-8
    std::string source;  // UTF-8, as passed: "libDrive/DriveTest"
    int line = 0;
};

struct ProgressReport : RecordedVariables {
    uint64_t timeMs = 0;
    std::string key;
    std::string text;         // what localize() made of it: "KEY{Name=Value,...}"
    double intervalMs = 0.0;  // 0 for plain progress
};

struct PercentReport {
    uint64_t timeMs = 0;
    unsigned int percent = 0;
};

struct ResetPercentReport {
    uint64_t timeMs = 0;
};

struct TimeLeftReport {
    uint64_t timeMs = 0;
    unsigned int seconds = 0;
};

struct MessageBoxReport {
    uint64_t timeMs = 0;
    std::string message;
    std::string title;
    int type = 0;
    unsigned int buttons = 0;  // MessageBox2_Options::buttons
    int look = 0;
    bool modal = false;
    bool shown = false;  // false when the host refused to show it
    int answer = 0;      // the answer given when shown
};

struct MessageBoxCancelReport {
    uint64_t timeMs = 0;
    std::string message;
};

struct LibraryReport {
    uint64_t timeMs = 0;
    std::string name;
};

// One report in arrival order. Stop polls are counted (stopPolls()), not recorded here.
using Report =
    std::variant<EventReport, ProgressReport, PercentReport, ResetPercentReport, TimeLeftReport,
                 MessageBoxReport, MessageBoxCancelReport, LibraryReport>;

class RecordingHost : public quel5::Host {
public:
    RecordingHost();
    ~RecordingHost() override;

    // --- What was reported (copies; safe while other threads report) ---
    std::vector<Report> reports() const;
    // The reports of one kind in order, e.g. all<PercentReport>().
    template <typename T>
    std::vector<T> all() const {
        std::lock_guard<std::recursive_mutex> lock(mutex_);
        std::vector<T> found;
        for (const Report& report : reports_) {
            if (const T* item = std::get_if<T>(&report)) found.push_back(*item);
        }
        return found;
    }
    template <typename T>
    std::size_t count() const {
        return all<T>().size();
    }

    std::vector<EventReport> events() const { return all<EventReport>(); }
    std::vector<EventReport> eventsWithKey(const std::string& key) const;
    std::vector<std::string> eventKeys() const;  // every event's key in order
    // Every event in order as "SEVERITY KEY@source{Name=Value,...}" (no braces without
    // variables), to compare whole sequences at once.
    std::vector<std::string> eventSummaries() const;
    // Every report in order as a line of text: "SEVERITY KEY@source:line{...}" for an event,
    // "progress TEXT" (or "progress every N ms TEXT"), "percent N", "reset percent",
    // "time left N", "message box MESSAGE", "cancel MESSAGE", "library NAME".
    std::vector<std::string> timeline() const;
    std::vector<ProgressReport> progressReports() const { return all<ProgressReport>(); }
    std::vector<unsigned int> percents() const;  // every percentDone value in order
    std::optional<unsigned int> lastPercent() const;
    std::vector<unsigned int> timesLeft() const;  // every estimatedTimeLeft value in order
    std::vector<MessageBoxReport> messageBoxes() const { return all<MessageBoxReport>(); }
    std::vector<std::string> libraries() const;
    unsigned int stopPolls() const;  // checkForStop calls so far

    // Forgets every report and the poll count; the scripts stay.
    void clear();

    // --- Scripts ---
    // From now on the next `polls` polls answer false, every later one true (0: stop at the
    // next poll). Replaces any earlier stop script.
    void stopAfterPolls(unsigned int polls);
    // Polls answer false again (the default).
    void neverStop();

    // Message boxes take answers from this queue in order, then the default answer.
    void queueAnswers(std::vector<int> answers);
    void setDefaultAnswer(int answer);  // MB2_OK unless set
    // When false, showMessageBox refuses (display() answers false); the box is still recorded.
    void setCanShowMessageBoxes(bool canShow);

    // --- quel5::Host ---
    void libraryRegistered(const QuelString& name) override;
    void eventRaised(quel5::Severity severity, const quel5::Event& event, const QuelString& source,
                     int line) override;
    void progress(const quel5::LocalizedString& text, double intervalMs) override;
    void percentDone(unsigned int percent) override;
    void resetPercentDone() override;
    void estimatedTimeLeft(unsigned int seconds) override;
    bool stopRequested() override;
    bool showMessageBox(const quel5::MessageBox2& box, int* answer) override;
    void messageBoxCancelled(const quel5::MessageBox2& box) override;
    // "KEY" when there are no variables, else "KEY{Name=Value,Name=Value}" in variable order,
    // each value as Value::toString().
    QuelString localize(const QuelString& key, const quel5::Variables& variables) override;

private:
    void record(Report report);

    mutable std::recursive_mutex mutex_;  // recursive: queries build on each other
    std::vector<Report> reports_;
    unsigned int polls_ = 0;
    std::optional<unsigned int> pollsBeforeStop_;
    std::deque<int> answers_;
    int defaultAnswer_;
    bool canShowMessageBoxes_ = true;
};

// Installs a host for the life of the scope and restores the one installed before. Every
// parameter in the registry is cleared on entry and on exit, so no value leaks between tests.
class ScopedHost {
public:
    explicit ScopedHost(quel5::Host& host);
    ~ScopedHost();
    ScopedHost(const ScopedHost&) = delete;
    ScopedHost& operator=(const ScopedHost&) = delete;

private:
    quel5::Host* previous_;
};

// UTF-8 of a framework string, for comparisons with literals.
std::string utf8(const QuelString& text);

}  // namespace testsupport

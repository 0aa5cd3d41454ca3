// The framework host drivediag installs while a test runs: what the library reports becomes
// output for a person (TextHost) or for a program (JsonHost). Both answer stop polls from the
// Ctrl-C request, message boxes from the --yes/--no choice, and texts from the catalogue.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/CommandLine.h"
#include "cli/ProgressTracker.h"
#include "cli/RunReport.h"
#include "quel5/Host.h"
#include "quel5/TestResult.h"

namespace host {

// What a run is about, shown before the test starts.
struct RunDescription {
    std::string test;    // the test's name on the command line
    std::string device;  // the device text
    std::vector<std::pair<std::string, std::string>> parameters;  // as set, key and value
};

// "ERROR", "WARNING", "INFO": how an event's severity reads in a line.
const char* severityWord(quel5::Severity severity);

// The text of an event as a person reads it: its catalogue text with the variables filled in,
// or the key when the catalogue has no text for it.
std::string eventMessage(const quel5::Event& event);

// The MessageBox2_Answer that `answer` gives to a box offering `buttons`
// (MessageBox2_Options::buttons; 0 is a box with only OK).
int messageBoxAnswer(PromptAnswer answer, unsigned int buttons);
// "OK", "CANCEL", "YES", ... for a MessageBox2_Answer.
std::string answerName(int answer);

class ConsoleHost;

// The host a run reports through: JSON lines or text for a person (redrawn in place on a
// terminal).
std::unique_ptr<ConsoleHost> makeConsoleHost(bool json, std::ostream& out, PromptAnswer answer,
                                             bool terminal);

class ConsoleHost : public quel5::Host {
public:
    ConsoleHost(std::ostream& out, PromptAnswer answer) : out_(out), answer_(answer) {}

    // Before the test: what runs, then on which device.
    virtual void runStarting(const RunDescription& run) = 0;
    virtual void deviceDescribed(const DeviceHeader& header) = 0;
    // Each time the test settles on its range.
    virtual void rangeResolved(const TestedRange& range) = 0;
    // After the test.
    virtual void runFinished(const RunSummary& summary) = 0;

    // Counts what the summary needs, then shows the event.
    void eventRaised(quel5::Severity severity, const quel5::Event& event, const QuelString& source,
                     int line) final;
    bool stopRequested() override;
    bool showMessageBox(const quel5::MessageBox2& box, int* answer) override;
    QuelString localize(const QuelString& key, const quel5::Variables& variables) override;

    // Sectors the test found to differ from what it wrote or read before.
    uint64_t compareErrors() const { return compareErrors_; }
    // How far the last pass got: short of 100 when it stopped early.
    unsigned int percentReached() const;

protected:
    virtual void showEvent(quel5::Severity severity, const quel5::Event& event,
                           const QuelString& source, int line) = 0;
    // Called once a box has been answered.
    virtual void messageBoxAnswered(const quel5::MessageBox2& box, int answer) = 0;
    std::ostream& out() { return out_; }
    // A pass begins: the run, or a rerun after resetPercentDone.
    void startPass();

    ProgressTracker progress_;

private:
    std::ostream& out_;
    PromptAnswer answer_;
    uint64_t compareErrors_ = 0;
    bool endedEarly_ = false;  // a pass stopped at its error limit or on request
};

// Lines for a person. On a terminal the progress is one line redrawn in place; elsewhere (a
// pipe, a file) each progress report is a line of its own.
class TextHost : public ConsoleHost {
public:
    TextHost(std::ostream& out, PromptAnswer answer, bool terminal)
        : ConsoleHost(out, answer), terminal_(terminal) {}

    void runStarting(const RunDescription& run) override;
    void deviceDescribed(const DeviceHeader& header) override;
    void rangeResolved(const TestedRange& range) override;
    void runFinished(const RunSummary& summary) override;

    void libraryRegistered(const QuelString& name) override;
    void progress(const quel5::LocalizedString& text, double intervalMs) override;
    void percentDone(unsigned int percent) override;
    void resetPercentDone() override;
    void estimatedTimeLeft(unsigned int seconds) override;
    void messageBoxCancelled(const quel5::MessageBox2& box) override;

protected:
    void showEvent(quel5::Severity severity, const quel5::Event& event, const QuelString& source,
                   int line) override;
    void messageBoxAnswered(const quel5::MessageBox2& box, int answer) override;

private:
    // Writes a whole line, moving the progress line out of its way on a terminal.
    void printLine(const std::string& line);
    void redrawProgress(unsigned int percent);
    void drawProgress(const std::string& line);
    void endProgressLine();

    bool terminal_;
    std::string progressText_;
    bool progressShown_ = false;  // a progress line without its newline is on the terminal
    std::size_t shownWidth_ = 0;
    std::optional<TestedRange> shownRange_;
    IntervalGate lines_;  // progress lines written to a file or pipe
};

// One JSON object per line; see host/README.md for the fields of each "type".
class JsonHost : public ConsoleHost {
public:
    JsonHost(std::ostream& out, PromptAnswer answer) : ConsoleHost(out, answer) {}

    void runStarting(const RunDescription& run) override;
    void deviceDescribed(const DeviceHeader& header) override;
    void rangeResolved(const TestedRange& range) override;
    void runFinished(const RunSummary& summary) override;

    void libraryRegistered(const QuelString& name) override;
    void progress(const quel5::LocalizedString& text, double intervalMs) override;
    void percentDone(unsigned int percent) override;
    void resetPercentDone() override;
    void estimatedTimeLeft(unsigned int seconds) override;
    void messageBoxCancelled(const quel5::MessageBox2& box) override;

protected:
    void showEvent(quel5::Severity severity, const quel5::Event& event, const QuelString& source,
                   int line) override;
    void messageBoxAnswered(const quel5::MessageBox2& box, int answer) override;

private:
    void writeLine(const std::string& json);
    void writePercent(unsigned int percent);

    std::optional<unsigned int> writtenPercent_;
    IntervalGate progressLines_;
    IntervalGate percentLines_;
};

}  // namespace host

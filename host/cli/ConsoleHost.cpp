#include "cli/ConsoleHost.h"

#include "cli/Catalogue.h"
#include "cli/Placeholders.h"
#include "cli/StopRequest.h"
#include "kiv/Log.h"
#include "os/Clock.h"
#include "quel5/MessageBox2.h"

namespace host {
namespace {

kiv::Logger* eventLogger() {
    static kiv::Logger* const created = kiv::LogFactory::createLogger(L"drivediag.Events", nullptr);
    return created;
}

}  // namespace

const char* severityWord(quel5::Severity severity) {
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

std::string eventMessage(const quel5::Event& event) {
    const std::string key = event.key().toUtf8();
    const std::string_view text = eventText(key);
    return fillPlaceholders(text.empty() ? std::string_view(key) : text, event.variables());
}

std::unique_ptr<ConsoleHost> makeConsoleHost(bool json, std::ostream& out, PromptAnswer answer,
                                             bool terminal) {
    if (json) return std::make_unique<JsonHost>(out, answer);
    return std::make_unique<TextHost>(out, answer, terminal);
}

int messageBoxAnswer(PromptAnswer answer, unsigned int buttons) {
    // The buttons' codes are those of the Windows message box: 0 OK, 1 OK/Cancel, 2
    // Abort/Retry/Ignore, 3 Yes/No/Cancel, 4 Yes/No, 5 Retry/Cancel. --yes presses the button
    // that goes on, --no the one that does not, among those the box offers.
    constexpr unsigned int kOk = 0, kOkCancel = 1, kAbortRetryIgnore = 2, kRetryCancel = 5;
    if (answer == PromptAnswer::Cancel) return quel5::MB2_CANCEL;
    const bool yes = answer == PromptAnswer::Yes;
    switch (buttons) {
        case kOk:
        case kOkCancel:
            return yes ? quel5::MB2_OK : quel5::MB2_CANCEL;
        case kAbortRetryIgnore:
            return yes ? quel5::MB2_RETRY : quel5::MB2_ABORT;
        case kRetryCancel:
            return yes ? quel5::MB2_RETRY : quel5::MB2_CANCEL;
        default:
            return yes ? quel5::MB2_YES : quel5::MB2_NO;
    }
}

std::string answerName(int answer) {
    switch (answer) {
        case quel5::MB2_NONE:
            return "NONE";
        case quel5::MB2_OK:
            return "OK";
        case quel5::MB2_CANCEL:
            return "CANCEL";
        case quel5::MB2_ABORT:
            return "ABORT";
        case quel5::MB2_RETRY:
            return "RETRY";
        case quel5::MB2_IGNORE:
            return "IGNORE";
        case quel5::MB2_YES:
            return "YES";
        case quel5::MB2_NO:
            return "NO";
    }
    return std::to_string(answer);
}

void ConsoleHost::eventRaised(quel5::Severity severity, const quel5::Event& event,
                              const QuelString& source, int line) {
    const std::string key = event.key().toUtf8();
    if (key == "DATA_COMPARE_FAILED" || key == "MSG_PATTERN_MISMATCH_ERROR") ++compareErrors_;
    if (key == "MAX_ERRORS_EXCEEDED" || key == "TEST_FAILED_THRESHOLD" || key == "TEST_ABORTED")
        endedEarly_ = true;
    // A person's screen shows the text alone; the log keeps what a developer needs to find it.
    eventLogger()->log(static_cast<int>(kiv::LogPriority::Notice),
                       kiv::String::fromUtf8(std::string(severityWord(severity)) + " " + key +
                                             " [" + source.toUtf8() + ":" + std::to_string(line) +
                                             "] " + eventMessage(event)));
    showEvent(severity, event, source, line);
}

void ConsoleHost::startPass() {
    progress_.startPass(os::nowMilliseconds());
    endedEarly_ = false;
}

unsigned int ConsoleHost::percentReached() const {
    return progress_.finish(endedEarly_ || host::stopRequested());
}

bool ConsoleHost::stopRequested() { return host::stopRequested(); }

bool ConsoleHost::showMessageBox(const quel5::MessageBox2& box, int* answer) {
    const int given = messageBoxAnswer(answer_, box.options().buttons);
    if (answer) *answer = given;
    messageBoxAnswered(box, given);
    return true;
}

QuelString ConsoleHost::localize(const QuelString& key, const quel5::Variables& variables) {
    const std::string name = key.toUtf8();
    const std::string_view text = stringText(name);
    return QuelString(
        fillPlaceholders(text.empty() ? std::string_view(name) : text, variables).c_str());
}

}  // namespace host

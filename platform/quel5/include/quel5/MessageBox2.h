// quel5::MessageBox2: a question put to the person at the host. Created through
// DiagModule::createMessageBox2, answered by the installed host.
#pragma once

#include "quel5/Export.h"
#include "quel5/QuelString.h"

namespace quel5 {

// The buttons offered, as the caller's code number (0: OK; 3: a yes/no/cancel style choice; the
// host decides how to present each). Answers are small integers; see MessageBox2::getReturn.
struct MessageBox2_Options {
    unsigned int buttons = 0;
    constexpr MessageBox2_Options() = default;
    constexpr MessageBox2_Options(unsigned int b) : buttons(b) {}  // NOLINT
};

// Common answer codes.
enum MessageBox2_Answer : int {
    MB2_NONE = 0,
    MB2_OK = 1,
    MB2_CANCEL = 2,
    MB2_ABORT = 3,
    MB2_RETRY = 4,
    MB2_IGNORE = 5,
    MB2_YES = 6,
    MB2_NO = 7
};

class QUEL5_API MessageBox2 {
public:
    MessageBox2(QuelString message, QuelString title, int type, MessageBox2_Options options,
                int look, bool modal);
    const QuelString& message() const { return message_; }
    const QuelString& title() const { return title_; }
    int type() const { return type_; }
    MessageBox2_Options options() const { return options_; }
    int look() const { return look_; }
    bool modal() const { return modal_; }

    // Shows the box through the host, which answers before display() returns. False when no
    // host is installed or it cannot show the box; the answer then stays MB2_NONE.
    bool display();
    // Waits for the answer; timeoutSeconds 0 waits as long as the host needs. The answer already
    // came with display(), so this returns at once.
    void wait(unsigned int timeoutSeconds);
    // The answer of the last successful display(), MB2_CANCEL after cancel(), else MB2_NONE.
    int getReturn() const { return answer_; }
    // Withdraws a displayed box: tells the host and sets the answer to MB2_CANCEL. Does nothing
    // when the box is not displayed.
    void cancel();

private:
    QuelString message_;
    QuelString title_;
    int type_;
    MessageBox2_Options options_;
    int look_;
    bool modal_;
    bool displayed_ = false;
    int answer_ = MB2_NONE;
};

}  // namespace quel5

// quel5::Host: the one place where what a library reports arrives. A host (drivediag, the tests'
// recording host) installs one implementation; without one, reports are dropped, stop is never
// requested and message boxes cannot be displayed.
//
// Calls into the host are serialised by one process-wide recursive lock: a host never sees two
// calls at once, even when a worker thread reports, and it may call LocalizedString::
// localizedString() (which comes back to localize) while handling a report. A host that blocks
// in showMessageBox holds up reports from other threads until it returns.
#pragma once

#include "quel5/Event.h"
#include "quel5/Export.h"
#include "quel5/MessageBox2.h"
#include "quel5/QuelString.h"

// <windows.h> defines ERROR as a macro; keep it out of this declaration.
#pragma push_macro("ERROR")
#undef ERROR

namespace quel5 {

enum class Severity { WARNING, INFORMATIVE, ERROR };

class QUEL5_API Host {
public:
    virtual ~Host();

    virtual void libraryRegistered(const QuelString& name) = 0;
    // `event` carries the variables as they are at the moment it is raised.
    virtual void eventRaised(Severity severity, const Event& event, const QuelString& source,
                             int line) = 0;
    // `intervalMs` is 0 for plain progress and the caller's interval for timed progress.
    virtual void progress(const LocalizedString& text, double intervalMs) = 0;
    virtual void percentDone(unsigned int percent) = 0;
    virtual void resetPercentDone() = 0;
    virtual void estimatedTimeLeft(unsigned int seconds) = 0;
    virtual bool stopRequested() = 0;
    // False when the box cannot be shown; otherwise *answer receives the person's answer
    // (a MessageBox2_Answer) before the call returns.
    virtual bool showMessageBox(const MessageBox2& box, int* answer) = 0;
    virtual void messageBoxCancelled(const MessageBox2& box) = 0;
    // The text of `key` with `variables` filled in.
    virtual QuelString localize(const QuelString& key, const Variables& variables) = 0;
};

// Installs the host (nullptr uninstalls). The caller keeps ownership and must keep the host
// alive until it is uninstalled; installing waits for a delivery in progress to finish.
QUEL5_API void installHost(Host* host);
QUEL5_API Host* installedHost();

}  // namespace quel5

#pragma pop_macro("ERROR")

// The stop request a person (or the system) makes: Ctrl-C, SIGTERM, SIGHUP or SIGQUIT on Linux;
// Ctrl-C, Ctrl-Break and the console's close, logoff and shutdown events on Windows. The host
// answers the library's next stop poll with it, so a test ends its pass cleanly: a destructive
// test writes its tested area back before drivediag exits.
#pragma once

namespace host {

// Makes the first of each termination signal request a stop; a second of the same kind ends
// the process at once, for a test that stopped polling. On Linux a closed output pipe no longer
// ends the process during the run (SIGPIPE is ignored; writes fail instead). On Windows the
// close, logoff and shutdown events, after which the system ends the process, hold it until
// removeInterruptHandler() or the system's grace period, whichever comes first.
void installInterruptHandler();
// Restores the default behaviour of every signal installInterruptHandler() took, and lets a
// waiting close, logoff or shutdown event proceed.
void removeInterruptHandler();

bool stopRequested();
void requestStop();
void clearStopRequest();

}  // namespace host

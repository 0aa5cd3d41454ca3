// The stop request a person makes with Ctrl-C. The host answers the library's next stop poll
// with it, so a test ends its pass cleanly (its USERABORTED result and clean-up included).
#pragma once

namespace host {

// Makes the first Ctrl-C (SIGINT) request a stop; a second one ends the process at once, for a
// test that stopped polling.
void installInterruptHandler();
// Restores the default SIGINT behaviour.
void removeInterruptHandler();

bool stopRequested();
void requestStop();
void clearStopRequest();

}  // namespace host

#include "cli/StopRequest.h"

#include "cli/StopFlag.h"

namespace host {

bool stopRequested() { return stopFlag().load(); }
void requestStop() { stopFlag().store(true); }
void clearStopRequest() { stopFlag().store(false); }

}  // namespace host

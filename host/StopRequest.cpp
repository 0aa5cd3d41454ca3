#include "host/StopRequest.h"

#include "host/StopFlag.h"

namespace host {

bool stopRequested() { return stopFlag().load(); }
void requestStop() { stopFlag().store(true); }
void clearStopRequest() { stopFlag().store(false); }

}  // namespace host

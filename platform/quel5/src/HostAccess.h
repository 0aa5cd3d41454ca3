// The one installed host and the lock that serialises every delivery to it. Reports come from
// the test thread and from the optical drive's waiting loop while a worker runs, so a host never
// sees two calls at once. The lock is recursive: a host may resolve a text (localize) while it
// handles a report.
#pragma once

#include <mutex>

#include "quel5/Host.h"

namespace quel5::detail {

std::recursive_mutex& deliveryMutex();
Host* currentHost();  // REQUIRES: deliveryMutex() held

// Calls `deliver(host)` under the delivery lock when a host is installed; otherwise does nothing.
template <typename Deliver>
void withHost(Deliver&& deliver) {
    std::lock_guard<std::recursive_mutex> lock(deliveryMutex());
    if (Host* host = currentHost()) deliver(*host);
}

}  // namespace quel5::detail

// Logging the way every class of the library does it: one logger per class, kept in a static
// slot and created on first use, and a trace of member entry and exit while detail is logged.
// Internal to the library.
#pragma once

#include <optional>

#include "kiv/Log.h"
#include "kiv/String.h"

namespace kivrlibdrive {

// The logger named `name`; created on the first call and remembered in `slot`.
inline kiv::Logger* classLogger(kiv::Logger*& slot, const wchar_t* name) {
    if (slot == nullptr) {
        kiv::LogFactory::createLogger(name, &slot);
    }
    return slot;
}

// Writes the entry and exit records of a member (priority 1) when the global priority is below
// 2, and nothing otherwise, so the trace costs nothing in a normal run.
class ScopedTrace {
public:
    ScopedTrace(const kiv::Logger* logger, const wchar_t* function, const wchar_t* source,
                int line) {
        if (kiv::LogFactory::getPriority() < 2) {
            trace_.emplace(logger, function, source, line);
        }
    }
    ScopedTrace(const ScopedTrace&) = delete;
    ScopedTrace& operator=(const ScopedTrace&) = delete;

private:
    std::optional<kiv::TraceLogger> trace_;
};

}  // namespace kivrlibdrive

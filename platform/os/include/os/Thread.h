// os::Thread: a worker thread that the installed clock knows about, and that can be waited for.
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>

#include "os/Clock.h"
#include "os/Export.h"
#include "os/Waitable.h"

namespace os {

// Starts `body` on a new thread at construction (CreateThread on Windows, std::thread
// elsewhere). The Thread is signalled once body has returned. The installed clock counts the
// thread as a participant from construction until body returns.
class OS_API Thread final : public Waitable {
public:
    // Throws std::system_error when the thread cannot be created.
    explicit Thread(std::function<void()> body);
    // Joins (see join) but drops an exception from body.
    ~Thread() override;
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    // Waits through the clock until body has returned, then reclaims the thread. Rethrows an
    // exception that escaped body (once). Calling it again does nothing.
    void join();
    bool isSignalled() const override;
    bool waitReal(uint32_t timeoutMs) override;

    struct Native;  // the platform's thread object

private:
    void run();
    friend struct Native;

    std::function<void()> body_;
    Clock* clock_;
    std::atomic<bool> finished_{false};
    std::exception_ptr failure_;
    bool joined_ = false;
    std::unique_ptr<Native> native_;
};

}  // namespace os

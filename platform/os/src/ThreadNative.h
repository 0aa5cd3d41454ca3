// The platform's half of os::Thread (Thread_linux.cpp / Thread_windows.cpp).
#pragma once

#include <cstdint>
#include <memory>

#include "os/Thread.h"

namespace os {

struct Thread::Native {
    // The platform's implementation.
    static std::unique_ptr<Native> create();
    virtual ~Native() = default;
    // Runs owner's body on a new thread. Throws std::system_error when none can be made.
    virtual void start(Thread& owner) = 0;
    // Called on the worker after the body has returned.
    virtual void finished() = 0;
    // Blocks in real time; true once the worker has finished.
    virtual bool waitReal(uint32_t timeoutMs) = 0;
    // Reclaims the finished worker.
    virtual void join() = 0;

protected:
    static void runBody(Thread& owner) { owner.run(); }
};

}  // namespace os

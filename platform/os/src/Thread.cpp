#include "os/Thread.h"

#include <utility>

#include "ThreadNative.h"

namespace os {

Thread::Thread(std::function<void()> body) : body_(std::move(body)), clock_(&clock()) {
    // Counted before the worker exists, so virtual time cannot move while it starts up.
    clock_->threadStarted();
    try {
        native_ = Native::create();
        native_->start(*this);
    } catch (...) {
        clock_->threadFinished();
        throw;
    }
}

Thread::~Thread() {
    try {
        join();
    } catch (...) {
        // The body's failure was never asked for; a destructor cannot report it.
    }
}

void Thread::run() {
    try {
        body_();
    } catch (...) {
        failure_ = std::current_exception();
    }
    finished_.store(true);
    native_->finished();
    clock_->threadFinished();
}

void Thread::join() {
    if (joined_) {
        return;
    }
    while (!clock_->wait(*this, kInfinite)) {
        // A virtual clock gives up infinite waits when nobody can progress; the worker is
        // then blocked outside the clock, so wait for it in real time.
        waitReal(kInfinite);
    }
    native_->join();
    joined_ = true;
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

bool Thread::isSignalled() const { return finished_.load(); }

bool Thread::waitReal(uint32_t timeoutMs) { return native_->waitReal(timeoutMs); }

}  // namespace os

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "ThreadNative.h"

namespace os {
namespace {

class StdThread final : public Thread::Native {
public:
    ~StdThread() override { join(); }

    void start(Thread& owner) override {
        worker_ = std::thread([&owner] { runBody(owner); });
    }

    void finished() override {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            done_ = true;
        }
        doneChanged_.notify_all();
    }

    bool waitReal(uint32_t timeoutMs) override {
        std::unique_lock<std::mutex> lock(mutex_);
        auto isDone = [this] { return done_; };
        if (timeoutMs == kInfinite) {
            doneChanged_.wait(lock, isDone);
            return true;
        }
        return doneChanged_.wait_for(lock, std::chrono::milliseconds(timeoutMs), isDone);
    }

    void join() override {
        if (worker_.joinable()) {
            worker_.join();
        }
    }

private:
    std::thread worker_;
    std::mutex mutex_;
    std::condition_variable doneChanged_;
    bool done_ = false;
};

}  // namespace

std::unique_ptr<Thread::Native> Thread::Native::create() { return std::make_unique<StdThread>(); }

}  // namespace os

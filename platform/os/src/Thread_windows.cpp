#include <windows.h>

#include <system_error>

#include "ThreadNative.h"

namespace os {
namespace {

class Win32Thread final : public Thread::Native {
public:
    ~Win32Thread() override { join(); }

    void start(Thread& owner) override {
        handle_ = CreateThread(nullptr, 0, &Win32Thread::entry, &owner, 0, nullptr);
        if (handle_ == nullptr) {
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                                    "CreateThread");
        }
    }

    // The thread handle itself becomes signalled when the thread has ended.
    void finished() override {}

    bool waitReal(uint32_t timeoutMs) override {
        const DWORD limit = timeoutMs == kInfinite ? INFINITE : timeoutMs;
        return WaitForSingleObject(handle_, limit) == WAIT_OBJECT_0;
    }

    void join() override {
        if (handle_ != nullptr) {
            WaitForSingleObject(handle_, INFINITE);
            CloseHandle(handle_);
            handle_ = nullptr;
        }
    }

private:
    static DWORD WINAPI entry(LPVOID owner) {
        runBody(*static_cast<Thread*>(owner));
        return 0;
    }

    HANDLE handle_ = nullptr;
};

}  // namespace

std::unique_ptr<Thread::Native> Thread::Native::create() { return std::make_unique<Win32Thread>(); }

}  // namespace os

#include <process.h>
#include <windows.h>

#include <cerrno>

#include <system_error>

#include "ThreadNative.h"

namespace os {
namespace {

class Win32Thread final : public Thread::Native {
public:
    ~Win32Thread() override { join(); }

    void start(Thread& owner) override {
        // The body is C++ using the C runtime: _beginthreadex sets up the runtime's per-thread
        // state, which CreateThread leaves to chance.
        const uintptr_t started =
            _beginthreadex(nullptr, 0, &Win32Thread::entry, &owner, 0, nullptr);
        if (started == 0) {
            throw std::system_error(errno, std::generic_category(), "_beginthreadex");
        }
        handle_ = reinterpret_cast<HANDLE>(started);
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
    static unsigned __stdcall entry(void* owner) {
        runBody(*static_cast<Thread*>(owner));
        return 0;
    }

    HANDLE handle_ = nullptr;
};

}  // namespace

std::unique_ptr<Thread::Native> Thread::Native::create() { return std::make_unique<Win32Thread>(); }

}  // namespace os

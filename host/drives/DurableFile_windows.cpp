#include <windows.h>

#include <algorithm>

#include "drives/DurableFile.h"
#include "os/Utf8.h"

namespace host {
namespace {

std::string reason(const std::string& path, const char* what) {
    return path + ": " + what + " (error " + std::to_string(GetLastError()) + ")";
}

class WindowsDurableFile : public DurableFile {
public:
    WindowsDurableFile(HANDLE handle, std::string path) : handle_(handle), path_(std::move(path)) {}
    ~WindowsDurableFile() override { CloseHandle(handle_); }
    WindowsDurableFile(const WindowsDurableFile&) = delete;
    WindowsDurableFile& operator=(const WindowsDurableFile&) = delete;

    bool append(const void* data, std::size_t size, std::string* error) override {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t done = 0; done < size;) {
            OVERLAPPED at{};
            const uint64_t offset = size_ + done;
            at.Offset = static_cast<DWORD>(offset);
            at.OffsetHigh = static_cast<DWORD>(offset >> 32);
            const DWORD piece = static_cast<DWORD>(std::min<std::size_t>(size - done, 1u << 30));
            DWORD written = 0;
            if (!WriteFile(handle_, bytes + done, piece, &written, &at) || written == 0) {
                *error = reason(path_, "cannot write");
                return false;
            }
            done += written;
        }
        size_ += size;
        return true;
    }

    bool sync(std::string* error) override {
        if (!FlushFileBuffers(handle_)) {
            *error = reason(path_, "cannot flush");
            return false;
        }
        return true;
    }

    bool truncate(uint64_t size, std::string* error) override {
        LARGE_INTEGER to;
        to.QuadPart = static_cast<LONGLONG>(size);
        if (!SetFilePointerEx(handle_, to, nullptr, FILE_BEGIN) || !SetEndOfFile(handle_)) {
            *error = reason(path_, "cannot truncate");
            return false;
        }
        size_ = size;
        return true;
    }

    uint64_t size() const override { return size_; }

private:
    HANDLE handle_;
    std::string path_;
    uint64_t size_ = 0;
};

}  // namespace

std::unique_ptr<DurableFile> createDurableFile(const std::string& path, std::string* error) {
    // FlushFileBuffers on the file also commits its directory entry on NTFS.
    const HANDLE handle = CreateFileW(os::fromUtf8(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                      nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        *error = reason(path, "cannot create");
        return nullptr;
    }
    return std::make_unique<WindowsDurableFile>(handle, path);
}

}  // namespace host

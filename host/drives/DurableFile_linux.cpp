#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "drives/DurableFile.h"

namespace host {
namespace {

std::string reason(const std::string& path, const char* what) {
    return path + ": " + what + ": " + std::strerror(errno);
}

class LinuxDurableFile : public DurableFile {
public:
    LinuxDurableFile(int fd, std::string path) : fd_(fd), path_(std::move(path)) {}
    ~LinuxDurableFile() override { ::close(fd_); }
    LinuxDurableFile(const LinuxDurableFile&) = delete;
    LinuxDurableFile& operator=(const LinuxDurableFile&) = delete;

    bool append(const void* data, std::size_t size, std::string* error) override {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t done = 0; done < size;) {
            const ssize_t written =
                ::pwrite(fd_, bytes + done, size - done, static_cast<off_t>(size_ + done));
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) {
                *error = reason(path_, "cannot write");
                return false;
            }
            done += static_cast<std::size_t>(written);
        }
        size_ += size;
        return true;
    }

    bool sync(std::string* error) override {
        if (::fdatasync(fd_) != 0) {
            *error = reason(path_, "cannot flush");
            return false;
        }
        return true;
    }

    bool truncate(uint64_t size, std::string* error) override {
        if (::ftruncate(fd_, static_cast<off_t>(size)) != 0) {
            *error = reason(path_, "cannot truncate");
            return false;
        }
        size_ = size;
        return true;
    }

    uint64_t size() const override { return size_; }

private:
    int fd_;
    std::string path_;
    uint64_t size_ = 0;
};

// A new file's name survives a power cut only once its directory is flushed too.
bool syncDirectoryOf(const std::string& path) {
    std::filesystem::path directory = std::filesystem::path(path).parent_path();
    if (directory.empty()) directory = ".";
    const int fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

}  // namespace

std::unique_ptr<DurableFile> createDurableFile(const std::string& path, std::string* error) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) {
        *error = reason(path, "cannot create");
        return nullptr;
    }
    if (!syncDirectoryOf(path)) {
        *error = reason(path, "cannot flush its directory");
        ::close(fd);
        ::unlink(path.c_str());
        return nullptr;
    }
    return std::make_unique<LinuxDurableFile>(fd, path);
}

}  // namespace host

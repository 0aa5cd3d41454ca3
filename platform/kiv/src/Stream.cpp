#include "kiv/Stream.h"

#include "PlatformFile.h"
#include "kiv/FileSystem.h"

namespace kiv {

Stream::~Stream() { close(); }

bool Stream::close() {
    if (!file_) return false;
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    return closed;
}

bool IFStream::openFile(const String& path) {
    close();
    // fopen happily opens a directory on POSIX and then fails on read; refuse it up front.
    if (FileSystem::isDirectory(path)) return false;
    file_ = platform::openFile(path, platform::FileMode::Read);
    return file_ != nullptr;
}

std::size_t IFStream::read(void* buffer, std::size_t count) {
    if (!file_ || !buffer || count == 0) return 0;
    return std::fread(buffer, 1, count, file_);
}

bool IFStream::hasFailed() const { return file_ && std::ferror(file_) != 0; }

}  // namespace kiv

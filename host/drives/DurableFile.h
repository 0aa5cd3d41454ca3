// host::DurableFile: a new file written front to back whose contents can be made durable (on
// the medium, not only in the system's cache) before the program goes on. Used for the undo
// journal. DurableFile_linux.cpp and DurableFile_windows.cpp implement it; CMake picks one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace host {

class DurableFile {
public:
    virtual ~DurableFile() = default;

    // Writes `size` bytes at the current end. False with a reason in *error.
    virtual bool append(const void* data, std::size_t size, std::string* error) = 0;
    // Returns once everything appended is on the medium.
    virtual bool sync(std::string* error) = 0;
    // Cuts the file to its first `size` bytes; the next append goes there. Not synced.
    virtual bool truncate(uint64_t size, std::string* error) = 0;
    virtual uint64_t size() const = 0;
};

// Creates `path` (UTF-8), which must not exist yet, and makes its directory entry durable.
// nullptr with a reason in *error.
std::unique_ptr<DurableFile> createDurableFile(const std::string& path, std::string* error);

}  // namespace host

// kiv::Stream and kiv::IFStream: reading a file in binary chunks. Not thread-safe; one stream
// belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdio>

#include "kiv/Export.h"
#include "kiv/String.h"

namespace kiv {

class KIV_API Stream {
public:
    Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    virtual ~Stream();  // closes the file when still open

    bool isOpen() const { return file_ != nullptr; }
    // Closes the file. False when no file was open or the close failed; the stream is closed
    // afterwards in either case.
    bool close();

protected:
    std::FILE* file_ = nullptr;
};

class KIV_API IFStream : public Stream {
public:
    // Opens `path` for binary reading, closing any file opened before. False when it cannot be
    // opened (a directory cannot be opened).
    bool openFile(const String& path);
    // Reads up to `count` bytes into `buffer` and returns how many were read: fewer than
    // `count` only at the end of the file or on an error, 0 when the stream is not open.
    // REQUIRES: `buffer` holds `count` bytes.
    std::size_t read(void* buffer, std::size_t count);
    // True when a read stopped on an error rather than at the end of the file.
    bool hasFailed() const;
};

}  // namespace kiv

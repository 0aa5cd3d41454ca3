// host::AlignedBuffer: heap memory aligned for direct I/O, reused across transfers.
#pragma once

#include <cstddef>
#include <new>

namespace host {

class AlignedBuffer {
public:
    AlignedBuffer() = default;
    ~AlignedBuffer() { release(); }
    AlignedBuffer(const AlignedBuffer&) = delete;
    AlignedBuffer& operator=(const AlignedBuffer&) = delete;

    // Makes room for at least `bytes` bytes starting at a multiple of `alignment` (a power of
    // two) and returns it. Keeps the current block when it is big and aligned enough; the
    // contents are not preserved otherwise. Throws std::bad_alloc.
    unsigned char* reserve(std::size_t bytes, std::size_t alignment) {
        if (data_ == nullptr || bytes > size_ || alignment > alignment_) {
            release();
            data_ =
                static_cast<unsigned char*>(::operator new (bytes, std::align_val_t{alignment}));
            size_ = bytes;
            alignment_ = alignment;
        }
        return data_;
    }

    void release() {
        if (data_ != nullptr) {
            ::operator delete (data_, std::align_val_t{alignment_});
        }
        data_ = nullptr;
        size_ = 0;
        alignment_ = 0;
    }

private:
    unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t alignment_ = 0;
};

}  // namespace host

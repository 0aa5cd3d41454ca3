// host::ReadPattern: whether the reads a drive is asked for form an upward stream, and where
// the stream goes next.
//
// A request continues a stream when it starts where the previous one ended (the next request
// is then expected right after it) or when it lies the same positive distance after the
// previous one as that one did after its own predecessor (the next is expected that distance
// further on). Anything else, a repeat or a step backwards included, ends the stream.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

class ReadPattern {
public:
    // Takes note of a request for `bytes` bytes at byte `offset`.
    void observe(uint64_t offset, size_t bytes);
    // Forgets every request seen.
    void reset();

    // True when the last request continued a stream.
    bool streaming() const { return stride_ != 0; }
    // The distance from one expected request to the next, in bytes; 0 when not streaming.
    uint64_t stride() const { return stride_; }
    // Where the last request started, in bytes; the expected ones follow at stride() apart.
    uint64_t lastOffset() const { return lastOffset_; }
    // The size expected of the coming requests: the last request's.
    size_t predictedBytes() const { return lastBytes_; }

private:
    bool seen_ = false;
    uint64_t lastOffset_ = 0;
    size_t lastBytes_ = 0;
    uint64_t lastDistance_ = 0;  // from the request before the last; 0 when none or not upward
    uint64_t stride_ = 0;        // 0 when not streaming
};

}  // namespace host

// The part of an answer a decoder may read: what arrived, cut to what the answer says it holds.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kivscsi {

// `headerBytes` bytes up to and including the length field, then `statedLength` more.
inline size_t answerLimit(size_t received, size_t headerBytes, uint64_t statedLength) {
    const uint64_t stated = headerBytes + statedLength;
    return stated < received ? static_cast<size_t>(stated) : received;
}

}  // namespace kivscsi

// The buffers the hard-drive tests read into. Internal to the library.
#pragma once

#include <cstdint>
#include <memory>

namespace kivrlibdrive {

// A zero-filled buffer of `bytes` bytes, or nullptr when it cannot be had: memory is short, or
// `bytes` does not fit the 32-bit size a drive call is given. REQUIRES: bytes > 0.
std::unique_ptr<unsigned char[]> AllocateSectorBuffer(uint64_t bytes);

}  // namespace kivrlibdrive

// CRC-32C (Castagnoli), the checksum of the undo journal's header and records: catches a record
// cut off by a crash or damaged on the medium.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

// The CRC-32C of `size` bytes at `data`, continuing from `crc` (0 for a fresh checksum).
uint32_t crc32c(const void* data, std::size_t size, uint32_t crc = 0);

}  // namespace host

// Sizing a disk or a volume from what Windows reports. Plain functions over the recorded
// answers, compiled on every platform so that tests can feed them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "os/Device.h"

namespace os::detail {

// The length in bytes from an IOCTL_DISK_GET_LENGTH_INFO answer (GET_LENGTH_INFORMATION: one
// signed 64-bit little-endian byte count) of `returned` bytes; nothing when the answer is short
// or negative.
std::optional<uint64_t> lengthFromAnswer(const void* answer, size_t returned);

// `reported` (a geometry query's answer, which for a volume describes the whole disk and for the
// older query stops at the last whole cylinder) resized to `lengthBytes`: the total is the
// length and the cylinders are recounted from it.
DiskGeometry geometryOfLength(const DiskGeometry& reported, uint64_t lengthBytes);

}  // namespace os::detail

// What a Windows pass-through request must respect, from the recorded answers of the system.
// Plain functions compiled on every platform so that tests can feed them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace kivscsi::detail {

// SCSI_PASS_THROUGH_DIRECT.TimeOutValue for a timeout of `timeoutMs`: whole seconds, rounded
// up, at least 1, for every 32-bit millisecond count (no wrap near the top of the range).
uint32_t passThroughTimeoutSeconds(uint32_t timeoutMs);

struct AdapterLimits {
    size_t alignment = 0;           // data buffers start at a multiple of this (a power of two)
    uint32_t maxTransferBytes = 0;  // largest data phase of one request
};

// Used when the adapter cannot be asked: a common alignment and a transfer every adapter takes.
AdapterLimits defaultAdapterLimits();

// The limits from a STORAGE_ADAPTER_DESCRIPTOR (IOCTL_STORAGE_QUERY_PROPERTY,
// StorageAdapterProperty) of `returned` bytes, laid out as winioctl.h declares it (DWORDs
// Version, Size, MaximumTransferLength, MaximumPhysicalPages, AlignmentMask, little-endian).
// The alignment is AlignmentMask + 1, at least the default's; the largest transfer is
// MaximumTransferLength (the default's when 0), further bounded by MaximumPhysicalPages - 1 pages
// of 4096 bytes (a buffer not starting on a page boundary touches one page more than its length
// covers). Nothing when the answer is too short to hold AlignmentMask or the mask is not one less
// than a power of two.
std::optional<AdapterLimits> adapterLimitsFromDescriptor(const void* answer, size_t returned);

}  // namespace kivscsi::detail

#include "PassThroughLimits.h"

#include <algorithm>

#include "os/LittleEndian.h"

namespace kivscsi::detail {
namespace {

constexpr size_t kDefaultAlignment = 16;
// 64 KiB: what every adapter handled long before descriptors were asked.
constexpr uint32_t kDefaultMaxTransfer = 64 * 1024;
constexpr uint64_t kPageBytes = 4096;

}  // namespace

uint32_t passThroughTimeoutSeconds(uint32_t timeoutMs) {
    const uint64_t seconds = (uint64_t{timeoutMs} + 999) / 1000;
    return static_cast<uint32_t>(std::max<uint64_t>(1, seconds));
}

AdapterLimits defaultAdapterLimits() {
    return AdapterLimits{kDefaultAlignment, kDefaultMaxTransfer};
}

std::optional<AdapterLimits> adapterLimitsFromDescriptor(const void* answer, size_t returned) {
    constexpr size_t kMaximumTransferLength = 8;
    constexpr size_t kMaximumPhysicalPages = 12;
    constexpr size_t kAlignmentMask = 16;
    if (answer == nullptr || returned < kAlignmentMask + 4) {
        return std::nullopt;
    }
    const auto* bytes = static_cast<const unsigned char*>(answer);
    const uint32_t mask = os::littleEndian32(bytes + kAlignmentMask);
    if ((uint64_t{mask} & (uint64_t{mask} + 1)) != 0) {
        return std::nullopt;
    }
    AdapterLimits limits;
    limits.alignment = std::max<size_t>(kDefaultAlignment, size_t{mask} + 1);
    uint64_t maxTransfer = os::littleEndian32(bytes + kMaximumTransferLength);
    if (maxTransfer == 0) {
        maxTransfer = kDefaultMaxTransfer;  // not reported
    }
    const uint32_t pages = os::littleEndian32(bytes + kMaximumPhysicalPages);
    if (pages >= 2) {
        maxTransfer = std::min<uint64_t>(maxTransfer, (uint64_t{pages} - 1) * kPageBytes);
    } else if (pages == 1) {
        // One page and no more: only a buffer inside one page can be described.
        maxTransfer = std::min<uint64_t>(maxTransfer, kPageBytes);
    }
    limits.maxTransferBytes = static_cast<uint32_t>(maxTransfer);
    return limits;
}

}  // namespace kivscsi::detail

#include "DiskLength.h"

namespace os::detail {

std::optional<uint64_t> lengthFromAnswer(const void* answer, size_t returned) {
    if (answer == nullptr || returned < sizeof(uint64_t)) {
        return std::nullopt;
    }
    const auto* bytes = static_cast<const unsigned char*>(answer);
    uint64_t length = 0;
    for (size_t i = sizeof(uint64_t); i-- > 0;) {
        length = (length << 8) | bytes[i];
    }
    if ((length >> 63) != 0) {
        return std::nullopt;
    }
    return length;
}

DiskGeometry geometryOfLength(const DiskGeometry& reported, uint64_t lengthBytes) {
    DiskGeometry geometry = reported;
    geometry.totalBytes = lengthBytes;
    const uint64_t bytesPerCylinder =
        uint64_t{reported.bytesPerSector} * reported.tracksPerCylinder * reported.sectorsPerTrack;
    geometry.cylinders = bytesPerCylinder == 0 ? 0 : lengthBytes / bytesPerCylinder;
    return geometry;
}

}  // namespace os::detail

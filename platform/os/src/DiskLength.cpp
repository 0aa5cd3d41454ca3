#include "DiskLength.h"

#include "os/LittleEndian.h"

namespace os::detail {

std::optional<uint64_t> lengthFromAnswer(const void* answer, size_t returned) {
    if (answer == nullptr || returned < sizeof(uint64_t)) {
        return std::nullopt;
    }
    const uint64_t length =
        littleEndian(static_cast<const unsigned char*>(answer), sizeof(uint64_t));
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

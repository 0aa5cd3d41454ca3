#include "libDrive/SectorBuffer.h"

#include <limits>
#include <new>

namespace kivrlibdrive {

std::unique_ptr<unsigned char[]> AllocateSectorBuffer(uint64_t bytes) {
    if (bytes > std::numeric_limits<uint32_t>::max()) {
        return nullptr;
    }
    return std::unique_ptr<unsigned char[]>(
        new (std::nothrow) unsigned char[static_cast<std::size_t>(bytes)]());
}

}  // namespace kivrlibdrive

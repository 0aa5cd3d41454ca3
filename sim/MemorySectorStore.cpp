#include <algorithm>

#include "sim/SectorPattern.h"
#include "sim/SectorStore.h"

namespace sim {

SectorStore::~SectorStore() = default;

MemorySectorStore::MemorySectorStore(uint32_t bytesPerSector, UnwrittenContent unwritten)
    : bytesPerSector_(bytesPerSector), unwritten_(unwritten) {}

bool MemorySectorStore::readSector(uint64_t lba, uint8_t* out) {
    const auto found = sectors_.find(lba);
    if (found == sectors_.end()) {
        fillUnwrittenSector(unwritten_, lba, out, bytesPerSector_);
    } else {
        std::copy(found->second.begin(), found->second.end(), out);
    }
    return true;
}

bool MemorySectorStore::writeSector(uint64_t lba, const uint8_t* data) {
    if (isUnwrittenSector(unwritten_, lba, data, bytesPerSector_)) {
        sectors_.erase(lba);
    } else {
        sectors_[lba].assign(data, data + bytesPerSector_);
    }
    return true;
}

}  // namespace sim

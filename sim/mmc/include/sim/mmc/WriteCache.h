// The drive's write cache: sectors written but perhaps not yet on the medium, kept by LBA and
// given up oldest first when full. Plain reads may be answered from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace sim::mmc {

struct CachedSector {
    uint32_t lba = 0;
    std::vector<uint8_t> data;
};

class WriteCache {
public:
    // REQUIRES: capacitySectors > 0.
    explicit WriteCache(size_t capacitySectors);

    // Keeps `data` for `lba`, dirty (to be written to the medium) or clean. Returns the dirty
    // sectors pushed out to make room; the caller must put them on the medium.
    std::vector<CachedSector> put(uint32_t lba, std::vector<uint8_t> data, bool dirty);
    // The cached bytes of `lba`, or null; valid until the next change of the cache.
    const std::vector<uint8_t>* find(uint32_t lba) const;
    // Marks the dirty sectors in [first, first + count) clean and returns copies of them.
    std::vector<CachedSector> takeDirty(uint32_t first, uint32_t count);
    std::vector<CachedSector> takeAllDirty();
    size_t dirtySectors() const;
    void clear();

private:
    struct Slot {
        std::vector<uint8_t> data;
        bool dirty = false;
        uint64_t age = 0;
    };

    size_t capacity_;
    uint64_t nextAge_ = 0;
    std::map<uint32_t, Slot> slots_;
    std::map<uint64_t, uint32_t> byAge_;
};

}  // namespace sim::mmc

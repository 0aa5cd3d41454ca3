#include "sim/mmc/WriteCache.h"

namespace sim::mmc {

WriteCache::WriteCache(size_t capacitySectors) : capacity_(capacitySectors) {}

std::vector<CachedSector> WriteCache::put(uint32_t lba, std::vector<uint8_t> data, bool dirty) {
    const auto existing = slots_.find(lba);
    if (existing != slots_.end()) byAge_.erase(existing->second.age);
    Slot& slot = slots_[lba];
    slot.data = std::move(data);
    slot.dirty = dirty;
    slot.age = nextAge_++;
    byAge_[slot.age] = lba;

    std::vector<CachedSector> evicted;
    while (slots_.size() > capacity_) {
        const auto oldest = byAge_.begin();
        const auto victim = slots_.find(oldest->second);
        if (victim->second.dirty) {
            evicted.push_back({victim->first, std::move(victim->second.data)});
        }
        slots_.erase(victim);
        byAge_.erase(oldest);
    }
    return evicted;
}

const std::vector<uint8_t>* WriteCache::find(uint32_t lba) const {
    const auto found = slots_.find(lba);
    return found == slots_.end() ? nullptr : &found->second.data;
}

std::vector<CachedSector> WriteCache::takeDirty(uint32_t first, uint32_t count) {
    std::vector<CachedSector> taken;
    const uint64_t end = uint64_t{first} + count;
    for (auto it = slots_.lower_bound(first); it != slots_.end() && it->first < end; ++it) {
        if (!it->second.dirty) continue;
        it->second.dirty = false;
        taken.push_back({it->first, it->second.data});
    }
    return taken;
}

std::vector<CachedSector> WriteCache::takeAllDirty() { return takeDirty(0, UINT32_MAX); }

size_t WriteCache::dirtySectors() const {
    size_t dirty = 0;
    for (const auto& entry : slots_) dirty += entry.second.dirty ? 1 : 0;
    return dirty;
}

void WriteCache::clear() {
    slots_.clear();
    byAge_.clear();
}

}  // namespace sim::mmc

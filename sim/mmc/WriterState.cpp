#include "sim/mmc/WriterState.h"

#include <algorithm>

#include "ModePages.h"

namespace sim::mmc {

uint16_t LongOperation::progress(uint64_t nowMs) const {
    if (endMs <= startMs || nowMs >= endMs) return 0xFFFF;
    const uint64_t done = nowMs > startMs ? nowMs - startMs : 0;
    return static_cast<uint16_t>(done * 0x10000 / (endMs - startMs));
}

WriterState::WriterState(const WriterConfig& c)
    : config(c), cache(std::max<uint32_t>(c.cacheSectors, 1)) {
    mode.writeParameters = defaultWriteParameters();
}

Reply answer(std::vector<uint8_t> data, size_t allocation) {
    if (data.size() > allocation) data.resize(allocation);
    Reply reply;
    reply.data = std::move(data);
    return reply;
}

Sense mediumReadiness(const WriterState& state, uint64_t nowMs) {
    const Sense tray = state.tray.readiness(nowMs);
    if (!tray.good()) return tray;
    if (state.operation.running(nowMs)) {
        Sense busy =
            senseOf(state.operation.kind == OperationKind::Blank ? code::kOperationInProgress
                                                                 : code::kFormatInProgress);
        busy.progress = state.operation.progress(nowMs);
        return busy;
    }
    return {};
}

void writeToMedium(WriterState& state, const std::vector<CachedSector>& sectors) {
    Disc* disc = state.tray.disc();
    if (disc == nullptr) return;
    for (const CachedSector& sector : sectors) {
        if (!state.faults.losesWriteAt(sector.lba)) disc->storeData(sector.lba, sector.data);
    }
}

void flushAndDropCache(WriterState& state) {
    writeToMedium(state, state.cache.takeAllDirty());
    state.cache.clear();
}

}  // namespace sim::mmc

#include "libDrive/RandomSeekDraw.h"

namespace kivrlibdrive {
namespace {

SeekSeedSource g_seedSource = nullptr;

}  // namespace

void SetSeekSeedSource(SeekSeedSource source) { g_seedSource = source; }

uint64_t SeekDraw::NextOffset(uint64_t span) {
    // Each seek gets an engine of its own, seeded afresh.
    std::mt19937 engine(NextSeed());
    std::uniform_int_distribution<uint64_t> offsets(0, span);
    return offsets(engine);
}

uint32_t SeekDraw::NextSeed() {
    if (g_seedSource != nullptr) {
        return g_seedSource();
    }
    return static_cast<uint32_t>(device_());
}

}  // namespace kivrlibdrive

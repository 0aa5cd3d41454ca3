#include "ReadOnlyTestSupport.h"

#include <random>

#include "libDrive/RandomSeekDraw.h"

namespace drivetests {
namespace {

std::vector<uint32_t> g_seeds;
std::size_t g_next = 0;

uint32_t nextScriptedSeed() {
    const uint32_t seed = g_seeds[g_next];
    g_next = (g_next + 1) % g_seeds.size();
    return seed;
}

}  // namespace

SeedScript::SeedScript(std::vector<uint32_t> seeds) {
    restart(std::move(seeds));
    kivrlibdrive::SetSeekSeedSource(&nextScriptedSeed);
}

void SeedScript::restart(std::vector<uint32_t> seeds) {
    if (!seeds.empty()) g_seeds = std::move(seeds);
    g_next = 0;
}

SeedScript::~SeedScript() { kivrlibdrive::SetSeekSeedSource(nullptr); }

uint64_t SeedScript::OffsetOf(uint32_t seed, uint64_t span) {
    std::mt19937 engine(seed);
    return std::uniform_int_distribution<uint64_t>(0, span)(engine);
}

uint32_t SeedScript::SeedDrawing(uint64_t offset, uint64_t span) {
    uint32_t seed = 1;
    while (OffsetOf(seed, span) != offset) ++seed;
    return seed;
}

}  // namespace drivetests

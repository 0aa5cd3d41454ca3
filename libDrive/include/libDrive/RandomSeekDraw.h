// Where the random seek test's sectors come from. Internal to the library: hosts do not use it.
//
// Every seek seeds a new 32-bit Mersenne Twister with one fresh 32-bit value and draws its
// offset uniformly from that engine. The fresh values come from the platform's random device;
// a test program may put a source of its own in its place to make a run repeatable.
#pragma once

#include <cstdint>
#include <random>

#include "libDrive/Export.h"

namespace kivrlibdrive {

// Answers the seed of the next seek's engine.
using SeekSeedSource = uint32_t (*)();

// Makes `source` give every seed from now on; nullptr returns to the random device. Not
// thread-safe: set it while no random seek test runs.
LIBDRIVE_API void SetSeekSeedSource(SeekSeedSource source);

// Draws the offsets of one run.
class SeekDraw {
public:
    SeekDraw() = default;
    SeekDraw(const SeekDraw&) = delete;
    SeekDraw& operator=(const SeekDraw&) = delete;

    // An offset uniform over [0, span] (both ends included; span may be 2^64 - 1) from a new
    // engine seeded with the next seed.
    uint64_t NextOffset(uint64_t span);

private:
    uint32_t NextSeed();

    std::random_device device_;
};

}  // namespace kivrlibdrive

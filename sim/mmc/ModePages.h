// The two mode pages the writer keeps: Write Parameters (05h), which MODE SELECT changes, and
// the read-only CD/DVD Capabilities and Mechanical Status page (2Ah) with the speeds; and the
// choice of the speed the drive actually uses for a requested one.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "sim/mmc/Disc.h"
#include "sim/mmc/Sense.h"
#include "sim/mmc/WriterState.h"

namespace sim::mmc {

inline constexpr uint8_t kWriteParametersPage = 0x05;
inline constexpr uint8_t kCapabilitiesPage = 0x2A;

enum class PageControl : uint8_t { Current = 0, Changeable = 1, Default = 2, Saved = 3 };

std::array<uint8_t, kWriteParametersPageLength> defaultWriteParameters();
std::vector<uint8_t> writeParametersPage(const ModeState& mode, PageControl control);
std::vector<uint8_t> capabilitiesPage(const WriterState& state, const Disc* disc,
                                      PageControl control);
// Applies the pages of a MODE SELECT(10) parameter list (mode header included).
Sense applyModeSelect(ModeState& mode, std::span<const uint8_t> parameterList);
// Whether the write parameters ask for another session after closing one.
bool multiSessionRequested(const ModeState& mode);

// The write speed (kB/s) the drive uses for `requested`: the fastest the disc supports that is
// not above it (0xFFFF: the fastest), the slowest when all are above; 0 without a writable disc.
uint16_t effectiveWriteSpeed(uint16_t requested, const Disc* disc);
// The read speed (kB/s) for `requested`: the disc's read speed or less.
uint16_t effectiveReadSpeed(uint16_t requested, const Disc& disc);

}  // namespace sim::mmc

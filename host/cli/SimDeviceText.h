// The text that names a simulated drive on the command line:
//
//   sim:SIZE[,sector=N][,bad=LBA[+COUNT]]...[,flaky=LBA]...[,internal=LBA]...[,cost=MS]
//       [,slow=LBA+COUNT:MS]...
//
// SIZE is a byte count with an optional binary unit (K, KB, KiB = 1024; M, MB, MiB; G, GB, GiB;
// T, TB, TiB; units are case-insensitive) or a sector count with the unit "s"; a byte size is
// rounded down to whole sectors. sector is the sector size in bytes (a power of two from 512 to
// 65536, default 512). bad marks COUNT sectors (default 1, at most 1,000,000 per entry) whose
// reads fail; flaky a sector that reads differently after its first read; internal a sector
// whose read ends a test with an internal error. cost is the time in milliseconds each read or
// write takes (at most 60000); slow makes each read touching COUNT sectors from LBA take MS
// more (at most 60000), as a worn area does. Every sector named must lie on the drive. At most
// 1024 bad, flaky, internal and slow entries are accepted together, so a text can never cost
// the drive more than that many stored spans.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/SimulatedDriveConfig.h"

namespace host {

struct SectorSpan {
    uint64_t first = 0;
    uint64_t count = 1;
    bool operator==(const SectorSpan&) const = default;
};

struct SimDeviceDescription {
    uint64_t totalSectors = 0;
    uint32_t bytesPerSector = 512;
    std::vector<SectorSpan> bad;
    std::vector<uint64_t> flaky;
    std::vector<uint64_t> internal;
    uint32_t costMs = 0;
    std::vector<sim::SlowSpan> slow;
    bool operator==(const SimDeviceDescription&) const = default;
};

// True when `text` names a simulated drive (starts with "sim:").
bool isSimDeviceText(std::string_view text);

// The drive `text` describes, or nullopt with a reason for a person in *error.
std::optional<SimDeviceDescription> parseSimDeviceText(std::string_view text, std::string* error);

}  // namespace host

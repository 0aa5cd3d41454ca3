// What a disc is like when it goes into the tray. discOf() fills every field with the kind's
// defaults; a test then changes the ones it cares about.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/mmc/MediaKind.h"

namespace sim::mmc {

// The Disc Status field of the disc information.
enum class DiscStatus : uint8_t { Blank = 0, Appendable = 1, Complete = 2 };

// A CD time in minutes, seconds and frames (75 frames a second).
struct Msf {
    uint8_t minutes = 0;
    uint8_t seconds = 0;
    uint8_t frames = 0;
    bool operator==(const Msf&) const = default;
};

struct DiscModel {
    MediaKind kind = MediaKind::DvdPlusRw;
    uint16_t profile = 0;          // reported profile; discOf() sets the kind's own
    uint32_t capacitySectors = 0;  // user-data sectors of 2048 bytes
    // Blank, Appendable (a closed session and room for more) or Complete. Read-only kinds are
    // always Complete; for overwritable kinds anything but Blank means formatted.
    DiscStatus status = DiscStatus::Blank;
    // Sectors already recorded on an Appendable or Complete sequential disc (they read as zeros).
    uint32_t recordedSectors = 0;
    std::string manufacturerId;  // DVD ADIP / BD disc information; up to 8 (DVD) or 6 (BD) bytes
    std::string discId;          // media type ID, up to 3 bytes
    Msf leadIn{97, 26, 66};      // ATIP start time of lead-in (recordable CDs)
    Msf leadOut{79, 59, 74};     // ATIP last possible start time of lead-out
    uint8_t copyProtection = 0;  // CPST of the copyright structure: 0 none, 1 CSS/CPPM, 2 CPRM
    // A disc the read/write test has used: sector 0 holds its usage marker (bytes 0-1 the
    // count big-endian, 2-3 a copy, the rest 0xBD) and at least that sector is recorded. A
    // Blank status then counts as Appendable (formatted, for overwritable kinds).
    std::optional<uint16_t> usageCount;
    // Write speeds in kB/s, fastest first, when the disc allows others than its kind's.
    std::vector<uint16_t> writeSpeeds;
    // Virtual time the long operations take.
    uint32_t minimalBlankSeconds = 60;
    uint32_t fullBlankSeconds = 600;
    uint32_t formatSeconds = 300;
    uint32_t backgroundFormatSeconds = 600;  // DVD+RW, BD-RE: formatting after FORMAT UNIT
};

// A disc of `kind` with the kind's profile, capacity and IDs, blank when recordable and
// complete when read-only.
DiscModel discOf(MediaKind kind);

}  // namespace sim::mmc

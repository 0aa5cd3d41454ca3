// The kinds of optical media the emulated writer knows, with what a drive reports for each:
// MMC profile, family, how the blank disc is recorded, capacity and write speeds.
#pragma once

#include <cstdint>
#include <span>

namespace sim::mmc {

enum class MediaKind {
    CdRom,
    CdR,
    CdRw,
    DvdRom,
    DvdMinusR,
    DvdMinusRw,
    DvdMinusRDualLayer,
    DvdPlusR,
    DvdPlusRw,
    DvdPlusRDualLayer,
    DvdRam,
    BdRom,
    BdR,
    BdRe,
    HdDvdRom,
    HdDvdR,
    HdDvdRw,
    HdDvdRam,
};

enum class MediaFamily { Cd, Dvd, Bd, HdDvd };

// How data goes onto the disc: not at all, strictly in order at the next writable address
// (write-once media, and DVD-RW in sequential mode), or anywhere once formatted.
enum class Recording { ReadOnly, Sequential, Overwrite };

struct MediaTraits {
    MediaKind kind;
    const char* name;
    uint16_t profile;  // the MMC profile of a disc as it comes out of the box
    MediaFamily family;
    Recording recording;
    bool blankable;                         // BLANK applies (CD-RW, DVD-RW, HD DVD-RW)
    uint32_t capacitySectors;               // 2048-byte sectors of user data
    uint8_t bookType;                       // DVD and HD DVD physical format: book type nibble
    const char* defaultDiscId;              // media type ID reported in ADIP / disc information
    std::span<const uint16_t> writeSpeeds;  // kB/s, fastest first; empty for read-only kinds
    uint16_t readSpeed;                     // kB/s
};

const MediaTraits& traitsOf(MediaKind kind);
// Every kind, in declaration order.
std::span<const MediaKind> allMediaKinds();
// Every profile the writer lists in its profile list, highest first.
std::span<const uint16_t> supportedProfiles();

inline constexpr uint32_t kSectorBytes = 2048;

// Profiles a disc takes on after formatting or blanking, where that changes it.
inline constexpr uint16_t kProfileDvdMinusRwRestrictedOverwrite = 0x0013;
inline constexpr uint16_t kProfileDvdMinusRwSequential = 0x0014;

}  // namespace sim::mmc

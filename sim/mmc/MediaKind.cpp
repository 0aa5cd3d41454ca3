#include "sim/mmc/MediaKind.h"

#include <array>

namespace sim::mmc {
namespace {

// kB/s; one CD speed is 176.4 kB/s, one DVD speed 1,385 kB/s, one BD speed 4,495 kB/s and one
// HD DVD speed 4,568 kB/s.
constexpr uint16_t kCdRSpeeds[] = {8467, 7056, 5645, 4234, 2822};
constexpr uint16_t kCdRwSpeeds[] = {4234, 2822, 1764, 706};
constexpr uint16_t kDvdRSpeeds[] = {22160, 16620, 11080, 5540};
constexpr uint16_t kDvdRwSpeeds[] = {11080, 8310, 5540, 2770};
constexpr uint16_t kDvdDualLayerSpeeds[] = {11080, 5540, 3324};
constexpr uint16_t kDvdRamSpeeds[] = {6925, 4155, 2770};
constexpr uint16_t kBdRSpeeds[] = {53940, 35960, 17980, 8990};
constexpr uint16_t kBdReSpeeds[] = {8990, 4495};
constexpr uint16_t kHdDvdRSpeeds[] = {9136, 4568};
constexpr uint16_t kHdDvdRwSpeeds[] = {4568};

constexpr uint16_t kCdRead = 8467;
constexpr uint16_t kDvdRead = 22160;
constexpr uint16_t kBdRead = 35960;
constexpr uint16_t kHdDvdRead = 13704;

// CD capacities follow from the default lead-out start 79:59:74 less the 2-second pregap.
constexpr uint32_t kCdRecordableSectors = 359849;

using enum MediaKind;
using enum MediaFamily;
using enum Recording;

const std::array<MediaTraits, 18> kTraits = {{
    {CdRom, "CD-ROM", 0x0008, Cd, ReadOnly, false, 333000, 0, "", {}, kCdRead},
    {CdR, "CD-R", 0x0009, Cd, Sequential, false, kCdRecordableSectors, 0, "", kCdRSpeeds, kCdRead},
    {CdRw, "CD-RW", 0x000A, Cd, Sequential, true, kCdRecordableSectors, 0, "", kCdRwSpeeds,
     kCdRead},
    {DvdRom, "DVD-ROM", 0x0010, Dvd, ReadOnly, false, 2298496, 0x0, "", {}, kDvdRead},
    {DvdMinusR, "DVD-R", 0x0011, Dvd, Sequential, false, 2298496, 0x2, "G01", kDvdRSpeeds,
     kDvdRead},
    {DvdMinusRw, "DVD-RW", kProfileDvdMinusRwSequential, Dvd, Sequential, true, 2297888, 0x3, "W01",
     kDvdRwSpeeds, kDvdRead},
    {DvdMinusRDualLayer, "DVD-R DL", 0x0015, Dvd, Sequential, false, 4171712, 0x2, "L01",
     kDvdDualLayerSpeeds, kDvdRead},
    {DvdPlusR, "DVD+R", 0x001B, Dvd, Sequential, false, 2295104, 0xA, "R01", kDvdRSpeeds, kDvdRead},
    {DvdPlusRw, "DVD+RW", 0x001A, Dvd, Overwrite, false, 2295104, 0x9, "W11", kDvdRwSpeeds,
     kDvdRead},
    {DvdPlusRDualLayer, "DVD+R DL", 0x002B, Dvd, Sequential, false, 4173824, 0xE, "D01",
     kDvdDualLayerSpeeds, kDvdRead},
    {DvdRam, "DVD-RAM", 0x0012, Dvd, Overwrite, false, 2236704, 0x1, "M01", kDvdRamSpeeds,
     kDvdRead},
    {BdRom, "BD-ROM", 0x0040, Bd, ReadOnly, false, 12219392, 0, "", {}, kBdRead},
    {BdR, "BD-R", 0x0041, Bd, Sequential, false, 12219392, 0, "B01", kBdRSpeeds, kBdRead},
    {BdRe, "BD-RE", 0x0043, Bd, Overwrite, false, 12219392, 0, "E01", kBdReSpeeds, kBdRead},
    {HdDvdRom, "HD DVD-ROM", 0x0050, HdDvd, ReadOnly, false, 7315200, 0x4, "", {}, kHdDvdRead},
    {HdDvdR, "HD DVD-R", 0x0051, HdDvd, Sequential, false, 7315200, 0x6, "H01", kHdDvdRSpeeds,
     kHdDvdRead},
    {HdDvdRw, "HD DVD-RW", 0x0053, HdDvd, Sequential, true, 7315200, 0x7, "H02", kHdDvdRwSpeeds,
     kHdDvdRead},
    {HdDvdRam, "HD DVD-RAM", 0x0052, HdDvd, Overwrite, false, 7315200, 0x5, "H03", kHdDvdRwSpeeds,
     kHdDvdRead},
}};

const std::array<MediaKind, 18> kKinds = {CdRom,
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
                                          HdDvdRam};

const std::array<uint16_t, 21> kProfiles = {0x0053, 0x0052, 0x0051, 0x0050, 0x0043, 0x0042, 0x0041,
                                            0x0040, 0x002B, 0x001B, 0x001A, 0x0016, 0x0015, 0x0014,
                                            0x0013, 0x0012, 0x0011, 0x0010, 0x000A, 0x0009, 0x0008};

}  // namespace

const MediaTraits& traitsOf(MediaKind kind) { return kTraits[static_cast<size_t>(kind)]; }

std::span<const MediaKind> allMediaKinds() { return kKinds; }

std::span<const uint16_t> supportedProfiles() { return kProfiles; }

}  // namespace sim::mmc

// kivrlibdrive::MediaType: the kinds of optical media the optical drive tells apart, and the
// MMC profiles that map to them. The numbers are part of the interface (hosts store and
// compare them), so the order stays as it is even where it looks odd: DVD-RAM comes after the
// HD DVD kinds, and HD DVD-RW (profile 0x0053) is numbered before HD DVD-RAM (0x0052).
#pragma once

#include "libDrive/Export.h"

namespace kivrlibdrive {

enum MediaType {
    MEDIA_CDROM = 0,         // profile 0x0008
    MEDIA_CDR = 1,           // 0x0009
    MEDIA_CDRW = 2,          // 0x000A
    MEDIA_DVDROM = 3,        // 0x0010
    MEDIA_DVDMINUSR = 4,     // 0x0011
    MEDIA_DVDMINUSR_DL = 5,  // 0x0015, 0x0016
    MEDIA_DVDMINUSRW = 6,    // 0x0013, 0x0014
    MEDIA_DVDPLUSR = 7,      // 0x001B
    MEDIA_DVDPLUSR_DL = 8,   // 0x002B
    MEDIA_DVDPLUSRW = 9,     // 0x001A
    MEDIA_BDROM = 10,        // 0x0040
    MEDIA_BDR = 11,          // 0x0041, 0x0042
    MEDIA_BDRE = 12,         // 0x0043
    MEDIA_HDDVDROM = 13,     // 0x0050
    MEDIA_HDDVDR = 14,       // 0x0051
    MEDIA_HDDVDRW = 15,      // 0x0053
    MEDIA_HDDVDRAM = 16,     // 0x0052
    MEDIA_DVDRAM = 17,       // 0x0012
    MEDIA_UNKNOWN = 18,      // every other profile
};

// The media type of an MMC profile number; MEDIA_UNKNOWN for a profile not listed above.
LIBDRIVE_API MediaType mediaTypeOfProfile(unsigned short profile);

// True for the DVD and HD DVD kinds whose discs may carry a copy protection system (DVD-ROM to
// DVD+RW and the four HD DVD kinds). DVD-RAM and every CD and BD kind answer false.
LIBDRIVE_API bool mayCarryCopyProtection(MediaType type);

}  // namespace kivrlibdrive

#include "libDrive/windows/MediaType.h"

namespace kivrlibdrive {

MediaType mediaTypeOfProfile(unsigned short profile) {
    switch (profile) {
        case 0x0008:
            return MEDIA_CDROM;
        case 0x0009:
            return MEDIA_CDR;
        case 0x000A:
            return MEDIA_CDRW;
        case 0x0010:
            return MEDIA_DVDROM;
        case 0x0011:
            return MEDIA_DVDMINUSR;
        case 0x0015:
        case 0x0016:
            return MEDIA_DVDMINUSR_DL;
        case 0x0013:
        case 0x0014:
            return MEDIA_DVDMINUSRW;
        case 0x001B:
            return MEDIA_DVDPLUSR;
        case 0x002B:
            return MEDIA_DVDPLUSR_DL;
        case 0x001A:
            return MEDIA_DVDPLUSRW;
        case 0x0040:
            return MEDIA_BDROM;
        case 0x0041:
        case 0x0042:
            return MEDIA_BDR;
        case 0x0043:
            return MEDIA_BDRE;
        case 0x0050:
            return MEDIA_HDDVDROM;
        case 0x0051:
            return MEDIA_HDDVDR;
        case 0x0053:
            return MEDIA_HDDVDRW;
        case 0x0052:
            return MEDIA_HDDVDRAM;
        case 0x0012:
            return MEDIA_DVDRAM;
        default:
            return MEDIA_UNKNOWN;
    }
}

bool mayCarryCopyProtection(MediaType type) {
    return (type >= MEDIA_DVDROM && type <= MEDIA_DVDPLUSRW) ||
           (type >= MEDIA_HDDVDROM && type <= MEDIA_HDDVDRAM);
}

}  // namespace kivrlibdrive

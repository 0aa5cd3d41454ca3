// Byte images the optical drive shares with its hosts: the disc information block, the write
// parameters mode page, the block a blanking or formatting thread works from, and the drive
// geometry. Hosts read these byte for byte, so every layout below is fixed and checked at
// compile time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "scsi/ScsiPath.h"

namespace kivrlibdrive {

#pragma pack(push, 1)

// The MMC disc information block as READ DISC INFORMATION returns it, 34 bytes. After
// WindowsOpticalDrive::parseDiskInfoPage, dataLength, discIdentification,
// lastSessionLeadInStart and lastPossibleLeadOutStart are in host byte order; every other byte
// is as the drive sent it.
struct CDRRDiskInformation {
    uint16_t dataLength;       // bytes following this field
    uint8_t discStatus;        // bits 0-1 disc status, 2-3 last session state, 4 erasable
    uint8_t firstTrackNumber;  // first track on the disc
    uint8_t numberOfSessionsLsb;
    uint8_t firstTrackInLastSessionLsb;
    uint8_t lastTrackInLastSessionLsb;
    uint8_t flags;     // bits 0-1 background format status, 2 DBC_V, 5 URU ...
    uint8_t discType;  // 0x00 CD-DA/CD-ROM, 0x10 CD-I, 0x20 CD-ROM XA
    uint8_t numberOfSessionsMsb;
    uint8_t firstTrackInLastSessionMsb;
    uint8_t lastTrackInLastSessionMsb;
    uint32_t discIdentification;
    uint32_t lastSessionLeadInStart;    // MSF or LBA as the drive reports it
    uint32_t lastPossibleLeadOutStart;  // likewise
    uint8_t discBarCode[8];
    uint8_t discApplicationCode;
    uint8_t numberOfOpcTables;
};

// The MMC write parameters mode page (page 05h), 56 bytes. After parsing, packetSize and
// audioPauseLength are in host byte order; every other byte is as on the wire.
struct WriteParametersInfo {
    uint8_t pageCode;       // bits 0-5 page code, 6 SPF, 7 PS
    uint8_t pageLength;     // bytes following this field
    uint8_t writeType;      // bits 0-3 write type, 4 test write, 5 LS_V, 6 BUFE
    uint8_t trackMode;      // bits 0-3 track mode, 4 copy, 5 FP, 6-7 multi-session
    uint8_t dataBlockType;  // bits 0-3
    uint8_t linkSize;
    uint8_t reserved6;
    uint8_t applicationCode;  // bits 0-5: initiator application code
    uint8_t sessionFormat;
    uint8_t reserved9;
    uint32_t packetSize;        // blocks per packet for fixed packets
    uint16_t audioPauseLength;  // blocks
    uint8_t mediaCatalogNumber[16];
    uint8_t isrc[16];
    uint8_t subHeader[4];
    uint8_t vendorSpecific[4];
};

#pragma pack(pop)

// The block a caller shares with a blanking or formatting thread; the caller owns it and keeps
// it alive until formatDiscImp or blankDiscImp returns. The thread writes only status.
struct tag_CBlankingThreadParms {
    // The FORMAT UNIT parameter list: bytes 0-3 list header (bytes 0-1 are always sent as
    // zero; 2-3 the format descriptor length), 4-7 number of blocks, 8 format type and
    // sub-type, 9-11 the type-dependent parameter.
    unsigned char formatList[12];
    uint32_t status;   // the command's status, as every SCSI library call returns it
    char* deviceName;  // the device the command goes to (UTF-8); not owned
    _SCSI_PATH scsiPath;
};

// The drive geometry as the system reports it for a disk (the layout of Windows'
// DISK_GEOMETRY). MediaType is the system's media class number, 0 where it is not known.
struct DiskGeometry {
    int64_t Cylinders;
    uint32_t MediaType;
    uint32_t TracksPerCylinder;
    uint32_t SectorsPerTrack;
    uint32_t BytesPerSector;
};

static_assert(sizeof(CDRRDiskInformation) == 34);
static_assert(offsetof(CDRRDiskInformation, flags) == 7);
static_assert(offsetof(CDRRDiskInformation, discIdentification) == 12);
static_assert(offsetof(CDRRDiskInformation, lastSessionLeadInStart) == 16);
static_assert(offsetof(CDRRDiskInformation, lastPossibleLeadOutStart) == 20);
static_assert(offsetof(CDRRDiskInformation, discBarCode) == 24);
static_assert(offsetof(CDRRDiskInformation, numberOfOpcTables) == 33);

static_assert(sizeof(WriteParametersInfo) == 56);
static_assert(offsetof(WriteParametersInfo, packetSize) == 10);
static_assert(offsetof(WriteParametersInfo, audioPauseLength) == 14);
static_assert(offsetof(WriteParametersInfo, mediaCatalogNumber) == 16);
static_assert(offsetof(WriteParametersInfo, isrc) == 32);
static_assert(offsetof(WriteParametersInfo, subHeader) == 48);
static_assert(offsetof(WriteParametersInfo, vendorSpecific) == 52);

static_assert(offsetof(tag_CBlankingThreadParms, status) == 12);
static_assert(offsetof(tag_CBlankingThreadParms, deviceName) == 16);
static_assert(offsetof(tag_CBlankingThreadParms, scsiPath) == 24);

static_assert(sizeof(DiskGeometry) == 24);
static_assert(offsetof(DiskGeometry, BytesPerSector) == 20);

}  // namespace kivrlibdrive

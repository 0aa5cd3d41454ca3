// Decoders of a drive's answers. Each takes the buffer and the count of bytes the drive really
// returned (`received`: allocation minus residual, as the command functions report it) and
// never reads outside the first `received` bytes, nor beyond the length the answer states for
// itself, whatever the drive put there. A field that falls outside either is reported absent.
// Sense data is decoded by scsi/Sense.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "scsi/Export.h"
#include "scsi/UnitCommands.h"

namespace kivscsi {

// ---- READ CAPACITY ----
// The 8-byte answer in host order, or nothing when fewer than 8 bytes came back.
SCSI_API std::optional<Capacity> decodeCapacity(const uint8_t* data, size_t received);

// ---- GET CONFIGURATION ----
struct FeatureHeader {
    uint32_t dataLength = 0;  // bytes following the length field, as the drive states it
    uint16_t currentProfile = 0;
};
// The 8-byte feature header, or nothing when fewer than 8 bytes came back.
SCSI_API std::optional<FeatureHeader> decodeFeatureHeader(const uint8_t* data, size_t received);

struct FeatureDescriptor {
    uint16_t code = 0;
    uint8_t version = 0;
    bool persistent = false;
    bool current = false;
    // The feature's own bytes after its 4-byte descriptor header, cut to what was received
    // and to the answer's stated length: `available` may be less than `additionalLength`.
    uint8_t additionalLength = 0;
    const uint8_t* data = nullptr;  // points into the caller's buffer
    size_t available = 0;
};
// The first descriptor with feature code `code` whose 4-byte header lies inside the answer.
SCSI_API std::optional<FeatureDescriptor> findFeature(const uint8_t* data, size_t received,
                                                      uint16_t code);

struct ProfileEntry {
    uint16_t profile = 0;
    bool current = false;
};
// The complete 4-byte profile descriptors of the Profile List feature (0000h), in order.
// Empty when the feature is absent.
SCSI_API std::vector<ProfileEntry> decodeProfileList(const uint8_t* data, size_t received);

// ---- GET EVENT STATUS NOTIFICATION, media class ----
struct MediaEvent {
    bool noEventAvailable = false;  // NEA
    uint8_t notificationClass = 0;  // class of the returned event (4: media)
    uint8_t supportedClasses = 0;
    uint16_t eventDataLength = 0;
    uint8_t eventCode = 0;
    bool mediaPresent = false;
    bool doorOpen = false;
    bool hasMediaStatus = false;  // false when the media status byte was not returned
};
// The 4-byte event header and, when returned, the media event bytes; nothing when the header
// itself is short.
SCSI_API std::optional<MediaEvent> decodeMediaEvent(const uint8_t* data, size_t received);

// ---- READ DISC INFORMATION (standard disc information) ----
struct DiscInformation {
    uint16_t dataLength = 0;
    uint8_t discStatus = 0;        // 0 empty, 1 incomplete, 2 complete, 3 other
    uint8_t lastSessionState = 0;  // 0 empty, 1 incomplete, 3 complete
    bool erasable = false;
    uint8_t firstTrack = 0;
    uint16_t sessions = 0;
    uint16_t firstTrackInLastSession = 0;
    uint16_t lastTrackInLastSession = 0;
    uint8_t backgroundFormatStatus = 0;  // 0..3; 0 when not returned
    uint8_t discType = 0;
    size_t availableBytes = 0;  // bytes of the block inside both limits; later fields are 0
};
// Needs the length field and the status byte (3 bytes); fields beyond what came back are 0.
SCSI_API std::optional<DiscInformation> decodeDiscInformation(const uint8_t* data, size_t received);

// ---- READ TRACK INFORMATION ----
struct TrackInformation {
    uint16_t trackNumber = 0;    // bytes 32 (MSB, 0 when not returned) and 2
    uint16_t sessionNumber = 0;  // bytes 33 (MSB, 0 when not returned) and 3
    uint8_t trackMode = 0;       // byte 5, low nibble (the control nibble: 4 data, 5 incremental)
    uint8_t dataMode = 0;        // byte 6, low nibble (1 mode 1, 2 mode 2, 0x0F unknown)
    bool blank = false;
    bool packet = false;  // packet / incremental recording
    bool fixedPacket = false;
    bool nextWritableValid = false;  // NWA_V: nextWritableAddress holds an address to write at
    uint32_t trackStart = 0;         // LBA
    uint32_t nextWritableAddress = 0;
    uint32_t freeBlocks = 0;
    uint32_t fixedPacketSize = 0;  // blocking factor on DVD and BD
    uint32_t trackSize = 0;        // blocks
};
// Needs the 28 bytes up to the end of Track Size inside both limits; the track and session
// number MSBs count only when bytes 32 and 33 came back too.
SCSI_API std::optional<TrackInformation> decodeTrackInformation(const uint8_t* data,
                                                                size_t received);

// ---- GET PERFORMANCE, type 03h (write speeds) ----
struct WriteSpeedDescriptor {
    uint32_t endLba = 0;
    uint32_t readSpeed = 0;   // kB/s
    uint32_t writeSpeed = 0;  // kB/s
};
// The complete 16-byte descriptors after the 8-byte header, in order, as far as both what came
// back and the header's Performance Data Length reach. Empty when the header is short.
SCSI_API std::vector<WriteSpeedDescriptor> decodeWriteSpeedDescriptors(const uint8_t* data,
                                                                       size_t received);

// ---- MODE SENSE(10) ----
struct ModePage {
    uint8_t pageCode = 0;           // low six bits of the page's first byte
    const uint8_t* page = nullptr;  // the page's first byte, inside the caller's buffer
    size_t available = 0;  // bytes of the page inside the answer, 2-byte page header included
};
// Walks the pages after the mode parameter header and block descriptors for the first page
// whose low six bits equal `pageCode & 0x3F`.
SCSI_API std::optional<ModePage> findModePage(const uint8_t* data, size_t received,
                                              uint8_t pageCode);
// Current write speed selected (kB/s) from a capabilities page (2Ah), bytes 28-29; nothing
// when the page does not state or hold them.
SCSI_API std::optional<uint16_t> decodeCurrentWriteSpeed(const ModePage& page);

// ---- READ DISC STRUCTURE ----
// The raw text of a structure field of `count` bytes at `offset` (header included), cut at the
// first zero byte and at what the answer holds; empty when the field lies outside it.
SCSI_API std::string structureText(const uint8_t* data, size_t received, size_t offset,
                                   size_t count);
// DVD ADIP / physical format information: manufacturer id (bytes 23-30), disc id (31-33).
SCSI_API std::string decodeDvdManufacturerId(const uint8_t* data, size_t received);
SCSI_API std::string decodeDvdDiscId(const uint8_t* data, size_t received);
// BD disc information: manufacturer id (bytes 104-109), disc id (110-112).
SCSI_API std::string decodeBdManufacturerId(const uint8_t* data, size_t received);
SCSI_API std::string decodeBdDiscId(const uint8_t* data, size_t received);
// DVD copyright information: the protection system type (byte 4), nothing when absent.
SCSI_API std::optional<uint8_t> decodeCopyProtectionType(const uint8_t* data, size_t received);

// ---- READ TOC/PMA/ATIP, format 4 ----
struct Msf {
    uint8_t minutes = 0, seconds = 0, frames = 0;
};
struct AtipTimes {
    Msf leadInStart;   // bytes 8-10
    Msf leadOutStart;  // bytes 12-14 (last possible lead-out start)
};
SCSI_API std::optional<AtipTimes> decodeAtip(const uint8_t* data, size_t received);

}  // namespace kivscsi

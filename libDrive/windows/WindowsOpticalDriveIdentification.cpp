// What identifies a blank test disc: the manufacturer and disc IDs of DVD and BD media, and the
// ATIP lead-in and lead-out times of a recordable CD.
#include <algorithm>
#include <cstring>
#include <string>

#include "OpticalDriveLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "scsi/DiscCommands.h"

namespace kivrlibdrive {
namespace {

constexpr uint16_t kDvdStructureBytes = 256;
constexpr uint16_t kBdStructureBytes = 260;
constexpr uint16_t kAtipBytes = 804;
constexpr uint8_t kDvdAdip = 0x11;
constexpr uint8_t kDvdPhysicalFormat = 0x00;
constexpr uint8_t kBdDiscInformation = 0x00;
constexpr uint32_t kInvalidField = 0x2400;

// The text of `count` bytes at `bytes`, ending at the first zero byte, without surrounding
// blanks.
kiv::String identifier(const uint8_t* bytes, size_t count) {
    const uint8_t* const end = std::find(bytes, bytes + count, uint8_t{0});
    // Each byte is one character, whatever the disc's maker put there.
    return kiv::String(std::wstring(bytes, end)).trim();
}

kiv::String timeText(const kiv::Array<unsigned int>& msf) {
    return kiv::String::fromNumber(msf[0]) + L":" + kiv::String::fromNumber(msf[1]) + L":" +
           kiv::String::fromNumber(msf[2]);
}

}  // namespace

// Reads the DVD's ADIP into `answer`, or its physical format information where the drive
// cannot return ADIP (the same byte positions are taken from either). `fallbackLine` prefixes
// the notice of the fallback.
static void readDvdIdentification(const _SCSI_PATH& path, const char* deviceName,
                                  uint8_t (&answer)[kDvdStructureBytes], int fallbackLine) {
    std::memset(answer, 0, sizeof(answer));
    uint32_t status =
        kivscsi::ReadDvdStructure(path, deviceName, 0, 0, kDvdAdip, answer, sizeof(answer), 0);
    if (status == kInvalidField) {
        optical::log(2, fallbackLine,
                     L"Drive does not support reading ADIP info directly.  Firmware update may fix "
                     L"this problem");
        optical::log(2, fallbackLine, L"Use second method by reading physical format infomation");
        status = kivscsi::ReadDvdStructure(path, deviceName, 0, 0, kDvdPhysicalFormat, answer,
                                           sizeof(answer), 0);
    }
    if (status != 0) {
        throw FailedRetrivingADIPInfo(L"Cannot retrieve ADIP info.");
    }
}

kiv::String WindowsOpticalDrive::getDiscManufacturerID() {
    uint8_t answer[kDvdStructureBytes];
    readDvdIdentification(scsiPath, deviceName, answer, 1289);
    const kiv::String id = identifier(answer + 23, 8);
    optical::log(1, 1318, kiv::String(L"Manufacturer Id : ") + id);
    return id;
}

kiv::String WindowsOpticalDrive::getDiscID() {
    uint8_t answer[kDvdStructureBytes];
    readDvdIdentification(scsiPath, deviceName, answer, 1423);
    const kiv::String id = identifier(answer + 31, 3);
    optical::log(1, 1452, kiv::String(L"Disc Id : ") + id);
    return id;
}

// Reads the BD's disc information structure into `answer`; a failure is logged at
// `failureLine` with `failureText` (followed by the status when `withStatus`) and thrown.
static void readBdIdentification(const _SCSI_PATH& path, const char* deviceName,
                                 uint8_t (&answer)[kBdStructureBytes], int failureLine,
                                 const kiv::String& failureText, bool withStatus) {
    std::memset(answer, 0, sizeof(answer));
    const kivscsi::Status status = kivscsi::ReadBdStructure(
        path, deviceName, 0, 0, kBdDiscInformation, answer, sizeof(answer), 0);
    if (status != 0) {
        optical::log(4, failureLine,
                     withStatus ? failureText + kiv::String::fromNumber(status) : failureText);
        throw FailedRetrivingADIPInfo(L"Cannot retrieve ADIP info.");
    }
}

kiv::String WindowsOpticalDrive::getBLUERAYDiscManufacturerID() {
    uint8_t answer[kBdStructureBytes];
    readBdIdentification(scsiPath, deviceName, answer, 1339,
                         L"Failed Reading Blue Ray disc Structure for Manufacturer id. "
                         L"Error Code: ",
                         true);
    const kiv::String id = identifier(answer + 104, 6);
    optical::log(1, 1354, kiv::String(L"Manufacturer Id : ") + id);
    return id;
}

kiv::String WindowsOpticalDrive::getBLUERAYDiscID() {
    uint8_t answer[kBdStructureBytes];
    readBdIdentification(scsiPath, deviceName, answer, 1376,
                         L"Failed Reading BlueRay Disc Structure for Disc id", false);
    const kiv::String id = identifier(answer + 110, 3);
    optical::log(1, 1393, kiv::String(L"Disc Id : ") + id);
    return id;
}

// The three bytes at `offset` of the ATIP (minutes, seconds, frames).
static kiv::Array<unsigned int> readAtipTime(const _SCSI_PATH& path, const char* deviceName,
                                             size_t offset) {
    uint8_t answer[kAtipBytes] = {};
    const kivscsi::Status status =
        kivscsi::KIVR_ReadATIP(path, deviceName, 0, answer, sizeof(answer));
    if (status != 0) {
        throw FailedRetrivingATIPInfo(status);
    }
    kiv::Array<unsigned int> msf;
    for (size_t i = 0; i < 3; ++i) {
        msf.add(answer[offset + i]);
    }
    return msf;
}

kiv::Array<unsigned int> WindowsOpticalDrive::getLeadInTime() {
    kiv::Array<unsigned int> msf = readAtipTime(scsiPath, deviceName, 8);
    optical::log(1, 1479, kiv::String(L"Lead In : ") + timeText(msf));
    return msf;
}

kiv::Array<unsigned int> WindowsOpticalDrive::getLeadOutTime() {
    kiv::Array<unsigned int> msf = readAtipTime(scsiPath, deviceName, 12);
    optical::log(1, 1506, kiv::String(L"Lead Out : ") + timeText(msf));
    return msf;
}

}  // namespace kivrlibdrive

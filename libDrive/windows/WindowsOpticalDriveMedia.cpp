// Media presence, profile and kind, disc status, geometry, protection and the answers this
// class gives as constants (a host's subclass answers them from the disc).
#include <algorithm>
#include <cstring>

#include "OpticalDriveLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "os/Clock.h"
#include "os/Device.h"
#include "quel5/DiagModule.h"
#include "scsi/ByteOrder.h"
#include "scsi/DiscCommands.h"
#include "scsi/ModeCommands.h"
#include "scsi/UnitCommands.h"

namespace kivrlibdrive {
namespace {

using kivscsi::readBig16;
using kivscsi::readBig32;

constexpr uint16_t kFeatureAnswerBytes = 512;
constexpr uint16_t kDiscInformationBytes = 804;
constexpr uint8_t kOneFeature = 2;  // GET CONFIGURATION RT: the starting feature only
constexpr int kRequiredDiscAttempts = 3;
constexpr uint32_t kRequiredDiscPauseMs = 500;
constexpr uint32_t kCapacityRetryPauseMs = 1000;
constexpr uint32_t kFallbackBytesPerSector = 2048;

bool contains(const kiv::Array<unsigned short>& profiles, unsigned short profile) {
    return std::find(profiles.begin(), profiles.end(), profile) != profiles.end();
}

}  // namespace

bool WindowsOpticalDrive::mediaPresent(const unsigned long& status) { return status == 0; }

bool WindowsOpticalDrive::noMediaPresent(const unsigned long& status) {
    return (status & 0xFF00) == 0x3A00;
}

bool WindowsOpticalDrive::incompatibleMediaInstalled(const unsigned long& status) {
    return (status & 0xFFF0) == 0x3000;
}

bool WindowsOpticalDrive::unknownError(const unsigned long& status) {
    return status != 0 && (status & 0xFF00) != 0x3A00 && (status & 0xFFF0) != 0x3000;
}

// Media class events of a polled GET EVENT STATUS NOTIFICATION: the 4-byte header, then the
// event's 4 bytes (byte 5 holds the media status: bit 0 door open, bit 1 media present).
static bool readMediaStatus(const _SCSI_PATH& path, const char* deviceName, uint8_t& mediaStatus) {
    uint8_t answer[20] = {};
    if (kivscsi::GetEventStatusNotification(path, deviceName, true, 0x10, answer, sizeof(answer)) !=
        0) {
        return false;
    }
    const bool noEventAvailable = (answer[2] & 0x80) != 0;
    const bool mediaClass = (answer[2] & 0x07) == 4;
    const bool mediaClassSupported = (answer[3] & 0x10) != 0;
    if (noEventAvailable || !mediaClass || !mediaClassSupported || readBig16(answer) < 4) {
        return false;
    }
    mediaStatus = answer[5];
    return true;
}

bool WindowsOpticalDrive::isMediaPresentGESN(bool& present) {
    uint8_t mediaStatus = 0;
    if (!readMediaStatus(scsiPath, deviceName, mediaStatus)) {
        return false;
    }
    present = (mediaStatus & 0x02) != 0;
    return true;
}

bool WindowsOpticalDrive::isTrayClosedOrNoTrayGESN(bool& closedOrNoTray) {
    uint8_t mediaStatus = 0;
    if (!readMediaStatus(scsiPath, deviceName, mediaStatus)) {
        return false;
    }
    closedOrNoTray = (mediaStatus & 0x01) == 0;
    return true;
}

unsigned int WindowsOpticalDrive::getCurrentProfile() {
    uint8_t answer[kFeatureAnswerBytes] = {};
    const kivscsi::Status status =
        kivscsi::GetConfiguration(scsiPath, deviceName, kOneFeature, 0, answer, sizeof(answer));
    if (status != 0) {
        throw FailedGettingCurrentProfile(status);
    }
    return readBig16(answer + 6);
}

MediaType WindowsOpticalDrive::getCurrentMediaType() {
    try {
        return mediaTypeOfProfile(static_cast<unsigned short>(getCurrentProfile()));
    } catch (const FailedGettingCurrentProfile&) {
        return MEDIA_UNKNOWN;
    }
}

bool WindowsOpticalDrive::requiredDisc() {
    requiredMediaFound = false;
    for (int attempt = 0; attempt < kRequiredDiscAttempts; ++attempt) {
        if (attempt > 0) {
            os::sleepMilliseconds(kRequiredDiscPauseMs);
        }
        uint8_t answer[kFeatureAnswerBytes] = {};
        if (kivscsi::GetConfiguration(scsiPath, deviceName, kOneFeature, 0, answer,
                                      sizeof(answer)) != 0) {
            continue;
        }
        // The profile list of feature 0 starts at byte 12. The walk goes one descriptor past
        // the list's end (it reads the zeros behind it), as hosts have always seen it do.
        const unsigned int listEnd = 12u + answer[11];
        for (unsigned int offset = 12; offset <= listEnd; offset += 4) {
            const uint16_t profile = readBig16(answer + offset);
            const bool current = (answer[offset + 2] & 0x01) != 0;
            if (contains(requiredProfiles, profile) && current) {
                requiredMediaFound = true;
            }
        }
        // A current profile in the list answers true without marking the medium found.
        if (contains(requiredProfiles, readBig16(answer + 6)) || requiredMediaFound) {
            return true;
        }
    }
    return false;
}

bool WindowsOpticalDrive::emptyDisc() {
    uint8_t answer[kDiscInformationBytes] = {};
    if (kivscsi::ReadDiscInformation(scsiPath, deviceName, answer, sizeof(answer), 0) != 0) {
        optical::log(3, 449, L"Failed ReadDiscInformaton ");
        return false;
    }
    return (answer[2] & 0x03) == 0;
}

bool WindowsOpticalDrive::completeDisc() {
    uint8_t answer[kDiscInformationBytes] = {};
    if (kivscsi::ReadDiscInformation(scsiPath, deviceName, answer, sizeof(answer), 0) != 0) {
        optical::log(4, 538, L"Failed ReadDiscInformaton ");
        return false;
    }
    return (answer[2] & 0x03) == 2;
}

unsigned int WindowsOpticalDrive::getBGFormatInformation() {
    uint8_t answer[kDiscInformationBytes] = {};
    const kivscsi::Status status =
        kivscsi::ReadDiscInformation(scsiPath, deviceName, answer, sizeof(answer), 0);
    if (status != 0) {
        throw TestFailedException(status);
    }
    return answer[7] & 0x03u;
}

void WindowsOpticalDrive::parseDiskInfoPage(unsigned char* raw, CDRRDiskInformation* info) {
    std::memset(info, 0, sizeof(*info));
    const uint16_t length = readBig16(raw);
    if (length < 30) {
        return;
    }
    std::memcpy(info, raw, std::min<size_t>(size_t{length} + 2, sizeof(*info)));
    info->dataLength = length;
    info->discIdentification = readBig32(raw + 12);
    info->lastSessionLeadInStart = readBig32(raw + 16);
    info->lastPossibleLeadOutStart = readBig32(raw + 20);
}

void WindowsOpticalDrive::getDriveGeometry() {
    if (!openHandle()) {
        throw InternalException(L"Failed to open the drive handle");
    }
    const os::GeometryResult answer = os::queryDiskGeometry(handle);
    geometryValid = answer.error.ok();
    if (geometryValid) {
        geometry.Cylinders = static_cast<int64_t>(answer.geometry.cylinders);
        geometry.MediaType = 0;
        geometry.TracksPerCylinder = answer.geometry.tracksPerCylinder;
        geometry.SectorsPerTrack = answer.geometry.sectorsPerTrack;
        geometry.BytesPerSector = answer.geometry.bytesPerSector;
    } else {
        startDrive();
        kivscsi::Capacity capacity;
        kivscsi::Status status = kivscsi::ReadCapacity(scsiPath, deviceName, &capacity);
        if (status != 0) {
            os::sleepMilliseconds(kCapacityRetryPauseMs);
            status = kivscsi::ReadCapacity(scsiPath, deviceName, &capacity);
        }
        if (status != 0) {
            if (optical::isNoMedium(status)) {
                throw NoMediaPresent(L"No media present so cannot obtain drive geometry");
            }
            geometry.BytesPerSector = kFallbackBytesPerSector;
            throw InternalException(L"There was problem getting drive geometry");
        }
        geometryValid = true;
        geometry.BytesPerSector = capacity.blockLength;
        geometry.Cylinders = 1;
        geometry.MediaType = 0;
        geometry.SectorsPerTrack = 1;
        // The last block's address, as READ CAPACITY gives it (one less than the block count).
        geometry.TracksPerCylinder = capacity.lastLba;
    }
    totalSectors = uint64_t{geometry.SectorsPerTrack} * geometry.TracksPerCylinder *
                   static_cast<uint64_t>(geometry.Cylinders);
}

bool WindowsOpticalDrive::isMediaCopyProtected() {
    if (!mayCarryCopyProtection(getCurrentMediaType())) {
        return false;
    }
    uint8_t answer[512] = {};
    if (kivscsi::ReadDvdStructure(scsiPath, deviceName, 0, 0, 0x01, answer, sizeof(answer), 0) !=
        0) {
        optical::log(4, 508, L"Unable to identify if disc is copy protected\n");
        return false;
    }
    // Byte 4: the copy protection system type (CPST) of the copyright information.
    if (answer[4] != 0) {
        optical::log(1, 499, L"DVD/HD-DVD Disc is copy protected\n");
        return true;
    }
    optical::log(1, 504, L"DVD/HD-DVD Disc is not copy protected\n");
    return false;
}

quel5::TestResult WindowsOpticalDrive::getPASSCondition(bool warnIfNotRequired) {
    if (requiredMediaFound) {
        return quel5::TestResult::PASS;
    }
    quel5::DiagModule::warning(LibDriveStrings::g_EventCurrentProfileNotSet, optical::kSource,
                               1753);
    return warnIfNotRequired ? quel5::TestResult::WARN : quel5::TestResult::PASS;
}

bool WindowsOpticalDrive::getRealTimeStreamingFeature(unsigned char& flags) {
    uint8_t answer[16] = {};
    const kivscsi::Status status = kivscsi::GetConfiguration(scsiPath, deviceName, kOneFeature,
                                                             0x0107, answer, sizeof(answer));
    if (status != 0) {
        optical::log(4, 1782,
                     kiv::String(L"Failed getting the configuration for the Real Time Streaming "
                                 L"Feature. status = ") +
                         kiv::String::fromNumber(status));
        return false;
    }
    flags = answer[12];
    return (answer[10] & 0x01) != 0;
}

unsigned long WindowsOpticalDrive::getBytesPerSector() const { return geometry.BytesPerSector; }

unsigned long long WindowsOpticalDrive::getTotalSectorsOnMedia() const { return 2000000; }

void WindowsOpticalDrive::doOPC() { kivscsi::SendOPCInfo(scsiPath, deviceName); }

bool WindowsOpticalDrive::formatRequired() { return false; }
void WindowsOpticalDrive::formatDisc(unsigned int, unsigned int, unsigned int) {}
void WindowsOpticalDrive::blankDisc(unsigned int, unsigned int, unsigned int) {}
void WindowsOpticalDrive::setWriteParameters() {}
void WindowsOpticalDrive::prepareForWrite() {}
unsigned int WindowsOpticalDrive::getNextWritableAddress() { return 0; }
unsigned int WindowsOpticalDrive::sectorsToTest() { return 1; }
unsigned int WindowsOpticalDrive::getMaximumNumberOfTracks() { return 1; }
unsigned int WindowsOpticalDrive::getNextTrack() { return 1; }
bool WindowsOpticalDrive::mediaRequired() { return true; }

bool WindowsOpticalDrive::CDRDisc() { return false; }
bool WindowsOpticalDrive::CDRWDisc() { return false; }
bool WindowsOpticalDrive::DvdminusrDisc() { return false; }
bool WindowsOpticalDrive::DvdminusrwDisc() { return false; }
bool WindowsOpticalDrive::DvdminusrDLDisc() { return getCurrentMediaType() == MEDIA_DVDMINUSR_DL; }
bool WindowsOpticalDrive::DvdplusrDisc() { return false; }
bool WindowsOpticalDrive::DvdplusrwDisc() { return false; }
bool WindowsOpticalDrive::DvdplusrDLDisc() { return getCurrentMediaType() == MEDIA_DVDPLUSR_DL; }
bool WindowsOpticalDrive::BdrDisc() { return false; }
bool WindowsOpticalDrive::BdreDisc() { return false; }
bool WindowsOpticalDrive::RWDisc() { return false; }

}  // namespace kivrlibdrive

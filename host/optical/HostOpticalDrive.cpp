#include "optical/HostOpticalDrive.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "libDrive/Exceptions.h"
#include "optical/OpticalMedia.h"
#include "os/Clock.h"
#include "scsi/DiscCommands.h"
#include "scsi/UnitCommands.h"

namespace host {
namespace {

constexpr uint16_t kCdR = 0x0009, kCdRw = 0x000A;
constexpr uint16_t kDvdMinusR = 0x0011, kDvdRam = 0x0012;
constexpr uint16_t kDvdMinusRwOverwrite = 0x0013, kDvdMinusRwSequential = 0x0014;
constexpr uint16_t kDvdMinusRDualLayer = 0x0015;
constexpr uint16_t kDvdPlusRw = 0x001A, kBdRe = 0x0043;
constexpr uint16_t kHdDvdRam = 0x0052;
// Written in place rather than appended to.
constexpr std::initializer_list<uint16_t> kOverwritable = {kDvdRam, kDvdMinusRwOverwrite,
                                                           kDvdPlusRw, kBdRe, kHdDvdRam};

// READ TRACK INFORMATION: address type 1 names a track; track 0xFF is the one being written.
constexpr uint8_t kByTrackNumber = 1;
constexpr uint32_t kInvisibleTrack = 0xFF;
constexpr uint16_t kWriteSpeedDescriptors = 16;

// Write parameters: track-at-once on CD, incremental on DVD-R (MMC allows no TAO there), always
// data mode 1 in 2048-byte blocks.
constexpr uint8_t kWriteTypeIncremental = 0;
constexpr uint8_t kWriteTypeTrackAtOnce = 1;
constexpr uint8_t kTrackModeData = 4;
constexpr uint8_t kDataBlockMode1 = 8;

// FORMAT UNIT descriptors (format type in bits 2-7 of byte 8): a DVD+RW format, a BD-RE format
// with spare areas (sub-type 0, the quick one) and the full format a DVD-RAM takes.
constexpr uint8_t kFormatDvdPlusRw = 0x26;
constexpr uint8_t kFormatBdReWithSpare = 0x30;
constexpr uint8_t kFormatFull = 0x00;
constexpr uint8_t kFormatDescriptorLength = 8;

// The format type of a quick format of a disc of `profile`; nothing for the kinds that are
// blanked or never formatted.
std::optional<uint8_t> quickFormatType(uint16_t profile) {
    switch (profile) {
        case kDvdPlusRw:
            return kFormatDvdPlusRw;
        case kBdRe:
            return kFormatBdReWithSpare;
        case kDvdRam:
        case kHdDvdRam:
            return kFormatFull;
        default:
            return std::nullopt;
    }
}

constexpr uint32_t kBecomingReady = 0x0401;
constexpr uint32_t kReadyPollMs = 250;
constexpr uint32_t kReadyWaitMs = 30000;

}  // namespace

HostOpticalDrive::HostOpticalDrive(const quel5::DiagDevice& diagDevice,
                                   std::vector<uint16_t> profiles)
    : WindowsOpticalDrive(diagDevice) {
    for (uint16_t profile : profiles) requiredProfiles.add(profile);
}

uint16_t HostOpticalDrive::currentProfile() {
    try {
        return static_cast<uint16_t>(getCurrentProfile());
    } catch (const kivrlibdrive::FailedGettingCurrentProfile&) {
        return 0;
    }
}

void HostOpticalDrive::waitWhileBecomingReady() {
    for (uint32_t waited = 0; waited < kReadyWaitMs; waited += kReadyPollMs) {
        if (kivscsi::TestUnitReady(scsiPath, deviceName) != kBecomingReady) return;
        os::sleepMilliseconds(kReadyPollMs);
    }
}

bool HostOpticalDrive::profileIs(std::initializer_list<uint16_t> profiles) {
    const uint16_t current = currentProfile();
    return current != 0 && std::find(profiles.begin(), profiles.end(), current) != profiles.end();
}

bool HostOpticalDrive::mediumIs(std::string_view option) {
    const OpticalMedium* medium = mediumOfProfile(currentProfile());
    return medium != nullptr && medium->option == option;
}

bool HostOpticalDrive::CDRDisc() { return mediumIs("cd-r"); }
bool HostOpticalDrive::CDRWDisc() { return mediumIs("cd-rw"); }
bool HostOpticalDrive::DvdminusrDisc() { return mediumIs("dvd-r"); }
bool HostOpticalDrive::DvdminusrwDisc() { return mediumIs("dvd-rw"); }
bool HostOpticalDrive::DvdminusrDLDisc() { return mediumIs("dvd-r-dl"); }
bool HostOpticalDrive::DvdplusrDisc() { return mediumIs("dvd+r"); }
bool HostOpticalDrive::DvdplusrwDisc() { return mediumIs("dvd+rw"); }
bool HostOpticalDrive::DvdplusrDLDisc() { return mediumIs("dvd+r-dl"); }
bool HostOpticalDrive::BdrDisc() { return mediumIs("bd-r"); }
bool HostOpticalDrive::BdreDisc() { return mediumIs("bd-re"); }
bool HostOpticalDrive::RWDisc() {
    const OpticalMedium* medium = mediumOfProfile(currentProfile());
    return medium != nullptr && medium->rewritable;
}

void HostOpticalDrive::setWriteParameters() {
    const uint16_t profile = currentProfile();
    const bool cd = profile == kCdR || profile == kCdRw;
    const bool dvdMinus =
        profile == kDvdMinusR || profile == kDvdMinusRwSequential || profile == kDvdMinusRDualLayer;
    // DVD+R, the overwritable kinds and BD ignore the page.
    if (!cd && !dvdMinus) return;
    kivrlibdrive::WriteParametersInfo info{};
    if (getWriteProperties(&info) != 0) {
        throw kivrlibdrive::TestFailedException(
            kiv::String(L"The drive gave no write parameters page"));
    }
    const uint8_t writeType = cd ? kWriteTypeTrackAtOnce : kWriteTypeIncremental;
    info.writeType = static_cast<uint8_t>((info.writeType & 0xE0) | writeType);  // no test write
    info.trackMode = kTrackModeData;  // single session, variable packets, no copy bit
    info.dataBlockType = kDataBlockMode1;
    info.packetSize = 0;
    if (const unsigned long status = setWriteProperties(&info); status != 0) {
        throw kivrlibdrive::TestFailedException(static_cast<unsigned int>(status));
    }
}

kiv::Array<unsigned int> HostOpticalDrive::getSupportedWriteSpeeds() {
    uint8_t answer[8 + 16 * kWriteSpeedDescriptors] = {};
    uint32_t received = 0;
    std::vector<unsigned int> speeds;
    if (kivscsi::GetWriteSpeedPerformance(scsiPath, deviceName, kWriteSpeedDescriptors, answer,
                                          sizeof(answer), &received) == 0) {
        for (const kivscsi::WriteSpeedDescriptor& descriptor :
             kivscsi::decodeWriteSpeedDescriptors(answer, received)) {
            if (descriptor.writeSpeed != 0) speeds.push_back(descriptor.writeSpeed);
        }
    }
    std::sort(speeds.rbegin(), speeds.rend());
    speeds.erase(std::unique(speeds.begin(), speeds.end()), speeds.end());
    if (speeds.empty()) return WindowsOpticalDrive::getSupportedWriteSpeeds();
    kiv::Array<unsigned int> list;
    for (unsigned int speed : speeds) list.add(speed);
    return list;
}

void HostOpticalDrive::setSpeed(unsigned int speed) {
    speedsSet_.push_back(speed);
    WindowsOpticalDrive::setSpeed(speed);
}

kivrlibdrive::tag_CBlankingThreadParms HostOpticalDrive::quickFormat(uint8_t formatType) {
    kivrlibdrive::tag_CBlankingThreadParms parms{};
    parms.formatList[3] = kFormatDescriptorLength;
    std::memset(parms.formatList + 4, 0xFF, 4);  // as many blocks as the disc holds
    parms.formatList[8] = static_cast<uint8_t>(formatType << 2);
    parms.deviceName = deviceName;
    parms.scsiPath = scsiPath;
    return parms;
}

void HostOpticalDrive::formatDisc(unsigned int expectedSeconds, unsigned int startPercent,
                                  unsigned int endPercent) {
    kivrlibdrive::tag_CBlankingThreadParms parms =
        quickFormat(quickFormatType(currentProfile()).value_or(kFormatDvdPlusRw));
    formatDiscImp(&parms, expectedSeconds, startPercent, endPercent);
}

void HostOpticalDrive::prepareForWrite() {
    WindowsOpticalDrive::prepareForWrite();
    const std::optional<uint8_t> formatType = quickFormatType(currentProfile());
    if (!formatType || !emptyDisc()) return;
    // On the test thread: the foreground part of a quick format takes seconds, and the test's
    // bar belongs to the writing that follows.
    kivrlibdrive::tag_CBlankingThreadParms parms = quickFormat(*formatType);
    formatThread(&parms);
    if (parms.status != 0) throw kivrlibdrive::TestFailedException(parms.status);
}

void HostOpticalDrive::blankDisc(unsigned int expectedSeconds, unsigned int startPercent,
                                 unsigned int endPercent) {
    kivrlibdrive::tag_CBlankingThreadParms parms{};
    parms.deviceName = deviceName;
    parms.scsiPath = scsiPath;
    blankDiscImp(&parms, expectedSeconds, startPercent, endPercent);
}

void HostOpticalDrive::readSectors(const unsigned int& lba, unsigned short count, void* buffer,
                                   unsigned long bufferBytes, bool plainRead) {
    try {
        WindowsOpticalDrive::readSectors(lba, count, buffer, bufferBytes, plainRead);
    } catch (const kivrlibdrive::ReadFailedException&) {
        operations_.add(OperationRecord::Kind::Read, lba, count, false);
        throw;
    }
    operations_.add(OperationRecord::Kind::Read, lba, count, true);
}

void HostOpticalDrive::writeSectors(const unsigned int& lba, const unsigned short& count,
                                    const void* buffer, const unsigned long& bufferBytes) {
    try {
        WindowsOpticalDrive::writeSectors(lba, count, buffer, bufferBytes);
    } catch (const kivrlibdrive::WriteFailedException&) {
        operations_.add(OperationRecord::Kind::Write, lba, count, false);
        throw;
    } catch (const kivrlibdrive::InvalidMediaException&) {
        operations_.add(OperationRecord::Kind::Write, lba, count, false);
        throw;
    }
    operations_.add(OperationRecord::Kind::Write, lba, count, true);
}

std::optional<kivscsi::TrackInformation> HostOpticalDrive::trackToWrite(uint32_t* status) const {
    uint8_t answer[48] = {};
    uint32_t received = 0;
    *status = kivscsi::ReadTrackInformation(scsiPath, deviceName, kByTrackNumber, kInvisibleTrack,
                                            answer, sizeof(answer), &received);
    if (*status != 0) return std::nullopt;
    return kivscsi::decodeTrackInformation(answer, received);
}

unsigned int HostOpticalDrive::getNextWritableAddress() {
    uint32_t status = 0;
    const auto track = trackToWrite(&status);
    if (status != 0) throw kivrlibdrive::FailedReadingTrackInformation(status);
    if (!track) {
        throw kivrlibdrive::FailedReadingTrackInformation(
            kiv::String(L"The drive's track information was too short"));
    }
    if (track->nextWritableValid) return track->nextWritableAddress;
    // An overwritable disc is written from its start; a sequential one without a next writable
    // address is full or closed, with nothing left after its last track.
    if (profileIs(kOverwritable)) return 0;
    return track->trackStart + track->trackSize;
}

unsigned long long HostOpticalDrive::getTotalSectorsOnMedia() const {
    uint32_t status = 0;
    const auto track = trackToWrite(&status);
    if (!track) return WindowsOpticalDrive::getTotalSectorsOnMedia();
    if (!track->nextWritableValid) return uint64_t{track->trackStart} + track->trackSize;
    return uint64_t{track->nextWritableAddress} + track->freeBlocks;
}

}  // namespace host

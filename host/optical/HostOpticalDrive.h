// host::HostOpticalDrive: drivediag's optical drive. The library's drive class answers many
// media questions with constants; this one asks the drive: the media predicates follow the
// current profile, the next writable address and the disc's size come from READ TRACK
// INFORMATION, the write speeds from GET PERFORMANCE, and blanking and formatting are real.
// It also keeps what a run's summary reports: every transfer it was asked for and each speed
// the test set.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "drives/OperationRecord.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "scsi/Decoders.h"

namespace host {

// Sectors in one read or write: 32 KiB, the size drives and their firmware handle best.
inline constexpr unsigned int kOpticalSectorsPerTransfer = 16;

class HostOpticalDrive : public kivrlibdrive::WindowsOpticalDrive {
public:
    // `requiredProfiles`: the MMC profiles of the discs the person asked to test.
    HostOpticalDrive(const quel5::DiagDevice& diagDevice, std::vector<uint16_t> requiredProfiles);

    void setWriteParameters() override;
    // The write speeds the disc allows in kB/s, fastest first; the library's answer when the
    // drive lists none.
    kiv::Array<unsigned int> getSupportedWriteSpeeds() override;
    void setSpeed(unsigned int speed) override;
    // A quick format of a DVD+RW, BD-RE or DVD-RAM (CD-RW and DVD-RW are blanked instead).
    void formatDisc(unsigned int expectedSeconds, unsigned int startPercent,
                    unsigned int endPercent) override;
    void blankDisc(unsigned int expectedSeconds, unsigned int startPercent,
                   unsigned int endPercent) override;
    // A blank DVD+RW, BD-RE or DVD-RAM takes no write before it is formatted: a quick format
    // (for DVD+RW and BD-RE the drive does the rest in the background while the test writes).
    void prepareForWrite() override;
    void readSectors(const unsigned int& lba, unsigned short count, void* buffer,
                     unsigned long bufferBytes, bool plainRead) override;
    void writeSectors(const unsigned int& lba, const unsigned short& count, const void* buffer,
                      const unsigned long& bufferBytes) override;
    // Throws FailedReadingTrackInformation when the drive cannot say.
    unsigned int getNextWritableAddress() override;
    unsigned int sectorsToTest() override { return kOpticalSectorsPerTransfer; }
    // Where the disc ends: the next writable address plus the free blocks of the track being
    // written, the recorded size of a closed disc; the library's constant when unknown.
    unsigned long long getTotalSectorsOnMedia() const override;
    bool CDRDisc() override;
    bool CDRWDisc() override;
    bool DvdminusrDisc() override;
    bool DvdminusrwDisc() override;
    bool DvdminusrDLDisc() override;
    bool DvdplusrDisc() override;
    bool DvdplusrwDisc() override;
    bool DvdplusrDLDisc() override;
    bool BdrDisc() override;
    bool BdreDisc() override;
    bool RWDisc() override;

    // The current profile, 0 without a disc or when the drive does not say.
    uint16_t currentProfile();
    // Waits, up to 30 s, while the drive says its disc is becoming ready (a tray just closed),
    // so that what it says about the disc is about the disc.
    void waitWhileBecomingReady();
    const OperationRecord& operations() const { return operations_; }
    // Each speed setSpeed was given, in kB/s, in order.
    const std::vector<unsigned int>& speedsSet() const { return speedsSet_; }

private:
    bool profileIs(std::initializer_list<uint16_t> profiles);
    // Whether the disc in the drive is of the media table's kind `option` ("dvd+rw").
    bool mediumIs(std::string_view option);
    // The FORMAT UNIT parameters of a format of type `formatType` of the disc in the drive.
    kivrlibdrive::tag_CBlankingThreadParms quickFormat(uint8_t formatType);
    // The track the next write goes to (the invisible or incomplete one).
    std::optional<kivscsi::TrackInformation> trackToWrite(uint32_t* status) const;

    OperationRecord operations_;
    std::vector<unsigned int> speedsSet_;
};

}  // namespace host

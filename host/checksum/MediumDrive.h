// host::MediumDrive: the drive the checksum test runs on, a removable test medium whose files
// are read through the file system rather than by sector.
//
// Its device path (Drive::GetDriveLetter) is what the checksum test strips to find the medium's
// root: "\\.\E:" for a drive letter, or "\\.\" followed by a directory the host mapped the letter
// to. It has no sectors: every media-access operation answers NOTSUPPORTED (or 0). It always
// checks for the medium (NeedsMediaCheck) and asks a person to insert it through a message box
// (PromptUserOnUnqualifiedMedia): OK answers PASS, anything else USERABORTED.
#pragma once

#include <string>

#include "kiv/String.h"
#include "libDrive/ChecksumTest.h"
#include "libDrive/Drive.h"
#include "quel5/DiagDevice.h"

namespace host {

class MediumDrive : public kivrlibdrive::Drive {
public:
    // `diagDevice` must outlive the drive; `parameters` are what the checksum test is given;
    // `location` says for a person where the medium is looked for ("drive E:").
    MediumDrive(const quel5::DiagDevice& diagDevice,
                kivrlibdrive::CChecksumTest::ChecksumParameters parameters, std::string location);

    const kivrlibdrive::CChecksumTest::ChecksumParameters& checksumParameters() const {
        return parameters_;
    }
    // How often the person was asked for the medium.
    unsigned prompts() const { return prompts_; }

    quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count, void* buffer,
                                  unsigned int bufferSize) override;
    quel5::TestResult WriteSectors(const uint64_t& startSector, unsigned int count,
                                   const void* buffer, unsigned int bufferSize) override;
    quel5::TestResult VerifySectors(const uint64_t& startSector, unsigned int count) override;
    quel5::TestResult FlushCache() override;
    uint32_t GetSectorsPerTrack() override;
    uint32_t GetBytesPerSector() override;
    uint64_t GetTotalSectors() override;
    quel5::TestResult PrepareRead() override;
    quel5::TestResult OpenDevice() override;
    quel5::TestResult CloseDevice() override;
    bool IsWriteProtected() override;
    void* GetHandle() override;
    bool NeedsMediaCheck() override;
    quel5::TestResult CheckMedia(bool flag) override;
    bool IsRerunAllowed() override;
    bool ConfirmRerun() override;
    quel5::TestResult PromptUserOnUnqualifiedMedia() override;

private:
    kivrlibdrive::CChecksumTest::ChecksumParameters parameters_;
    std::string location_;
    unsigned prompts_ = 0;
};

}  // namespace host

// kivrlibdrive::Drive: the hard drive every hard-drive test reads and writes through.
//
// Drive holds the device's identity (its OS locator, the path to open it, its SCSI address) and
// the volume locks, and implements locking and a few defaults. Media access is left to a
// concrete subclass supplied by the host (or a simulation): the tests only call the virtual
// operations below, so keep their order; hosts compiled against this header depend on it.
//
// A drive is used by one test at a time, on the host's thread.
#pragma once

#include <cstdint>

#include "kiv/Array.h"
#include "kiv/String.h"
#include "libDrive/Export.h"
#include "quel5/DiagDevice.h"
#include "quel5/TestResult.h"
#include "scsi/ScsiPath.h"
#include "storage/DeviceLockingManager.h"

namespace kivrlibdrive {

// The value GetHandle() answers when the drive has no usable device: all bits set, the same
// value as Windows' INVALID_HANDLE_VALUE, so a Windows drive may return its HANDLE unchanged.
inline void* invalidDriveHandle() {
    return reinterpret_cast<void*>(~static_cast<std::uintptr_t>(0));
}

class LIBDRIVE_API Drive {
public:
    // Reads the device properties: "DriverName" (the path to open, used as it is), else
    // "DriveLetter" (a letter X gives the path "\\.\X:"), and "SCSIPath" (up to four numbers:
    // port, path, target, lun, each cut to 8 bits). Missing properties leave the path empty and
    // the address components 0. `diagDevice` is not owned and must outlive the drive.
    explicit Drive(const quel5::DiagDevice& diagDevice);
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;

    // Destroys the volume-locking helper with the drive.
    virtual ~Drive();

    // Reads `count` sectors starting at `startSector` into `buffer` of `bufferSize` bytes.
    // PASS on success; INTERNALERROR for a fault that must end the test; any other result
    // counts as one sector error.
    virtual quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count,
                                          void* buffer, unsigned int bufferSize) = 0;
    // Writes `count` sectors starting at `startSector` from `buffer` of `bufferSize` bytes.
    // PASS on success.
    virtual quel5::TestResult WriteSectors(const uint64_t& startSector, unsigned int count,
                                           const void* buffer, unsigned int bufferSize) = 0;
    // Has the drive check `count` sectors at `startSector` without transferring them (a verify
    // command). PASS when all are readable. Not used by the hard-drive tests.
    virtual quel5::TestResult VerifySectors(const uint64_t& startSector, unsigned int count) = 0;
    // Commits the drive's write cache to the medium. PASS on success. Not used by the tests.
    virtual quel5::TestResult FlushCache() = 0;
    // Sectors per track; 0 makes a test end with INTERNALERROR.
    virtual uint32_t GetSectorsPerTrack() = 0;
    // Bytes per sector; 0 makes a test end with INTERNALERROR.
    virtual uint32_t GetBytesPerSector() = 0;
    // Sectors a read should ask for at once to be fast; 0 (the default) when the drive has no
    // preference.
    virtual uint32_t GetOptimalReadAmount() const;
    // Capacity in sectors.
    virtual uint64_t GetTotalSectors() = 0;
    // Called before every read; tests ignore its result.
    virtual quel5::TestResult PrepareRead() = 0;
    // Opens the device so that GetHandle() answers a usable handle (again after CloseDevice()).
    // PASS on success.
    virtual quel5::TestResult OpenDevice() = 0;
    // Closes the device; GetHandle() answers invalidDriveHandle() until it is opened again.
    virtual quel5::TestResult CloseDevice() = 0;
    // True when the medium refuses writes.
    virtual bool IsWriteProtected() = 0;
    // The open device handle (a Windows HANDLE, or a descriptor or object cast to a pointer
    // elsewhere); invalidDriveHandle() when there is none, which makes a test return NODEVICE.
    virtual void* GetHandle() = 0;
    // Takes the disk's volumes away from everybody else. PASS, or DEVICEBUSY after raising the
    // error event "DeviceBusy". Pair every PASS with unLock().
    virtual quel5::TestResult lock();
    // Gives the volumes back. Always PASS.
    virtual quel5::TestResult unLock();
    // True when a test must call CheckMedia() before its pass.
    virtual bool NeedsMediaCheck() = 0;
    // Checks the medium; a result other than PASS ends the test with that result.
    virtual quel5::TestResult CheckMedia(bool flag) = 0;
    // Defaults: false, true, INCORRECTMEDIA.
    virtual bool CheckForQualifiedMedia();
    virtual bool MediaQualified();
    // Asked after a failed pass: may the test run once more, and does the person want it to.
    virtual bool IsRerunAllowed() = 0;
    virtual bool ConfirmRerun() = 0;
    virtual quel5::TestResult PromptUserOnUnqualifiedMedia();
    // What a test that passed returns. Default PASS.
    virtual quel5::TestResult GetPASSResult();
    // Called when a test starts its pass and on every exit from it. Default: nothing.
    virtual void LockTray();
    virtual void UnlockTray();
    // True when tests should report the estimated time left. Default false.
    virtual bool provideEstimatedTime();

    const kiv::String& GetDriveLetter() const { return driveLetter; }

    // Not available on this kind of drive: logs a notice and returns NOTSUPPORTED. Tests seek by
    // reading instead.
    quel5::TestResult SeekToSector(uint64_t sector);

    // Checksum placeholders: a drive supporting the checksum of a file hides these. Here each
    // returns INTERNALERROR, and CheckSumReadBytes() reads nothing and returns 0.
    quel5::TestResult CheckSumOpenFile();
    quel5::TestResult CheckSumCloseFile();
    quel5::TestResult ComputeCheckSum(const uint64_t& fileSize);
    quel5::TestResult GetCheckSumFileSize(unsigned int& fileSize);
    uint32_t CheckSumReadBytes(kiv::Array<unsigned char> buffer, const unsigned int& count);

protected:
    // Raises "DeviceBusy" as an error (as lock() does when the volumes cannot be taken) and
    // returns DEVICEBUSY. For subclasses that decide locking themselves.
    quel5::TestResult ReportDeviceBusy();

    kiv::String osLocator;
    kiv::String driveLetter;
    _SCSI_PATH scsiPath;
    const quel5::DiagDevice& device;
    libStorage::DeviceLockingManager lockingManager;

private:
    void GetScsiPath();
};

}  // namespace kivrlibdrive

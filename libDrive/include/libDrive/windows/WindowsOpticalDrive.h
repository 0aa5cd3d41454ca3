// kivrlibdrive::WindowsOpticalDrive: an optical writer driven through MMC commands.
//
// The object reaches its drive only by name: every command goes through the SCSI command
// library with the device's OS locator (a real writer such as "\\.\CdRom0" or "/dev/sr0", or
// an emulated one registered under its name), and the device handles come from the os layer.
// It answers what the read/write test asks: readiness, media presence and kind, disc status,
// identification, sector reads and writes, write parameters, speeds, blanking, formatting and
// closing. Many media questions have constant answers here; a host derives from this class and
// answers them from the disc (the data members are protected for that).
//
// The virtual operations are declared in the order hosts compiled against this header depend
// on; never reorder them. The object always calls its own operations through these slots, so an
// override changes every user. All waits and deadlines are measured on the one clock.
//
// Statuses are the SCSI library's: 0 success, (ASC << 8) | ASCQ of the sense data, or its own
// 0xAAxx / 0xABxx transport failures. Used on the host's test thread only; blanking and
// formatting run their one command on a worker thread while the caller waits.
#pragma once

#include <cstdint>

#include "kiv/Array.h"
#include "kiv/String.h"
#include "libDrive/Export.h"
#include "libDrive/windows/MediaType.h"
#include "libDrive/windows/OpticalStructures.h"
#include "os/NativeHandle.h"
#include "quel5/DiagDevice.h"
#include "quel5/TestResult.h"
#include "scsi/ScsiPath.h"
#include "storage/ExclusiveAccess.h"

namespace kivrlibdrive {

class LIBDRIVE_API WindowsOpticalDrive {
public:
    // Reads "DriverName" (else "\\.\" + "DriveLetter" + ":"), "SCSIPath" and the OS locator of
    // `diagDevice`, which is not owned and must outlive the drive. Opens nothing.
    explicit WindowsOpticalDrive(const quel5::DiagDevice& diagDevice);
    // Copies every member except the device handles: the copy opens its own when it needs one.
    WindowsOpticalDrive(const WindowsOpticalDrive& other);
    WindowsOpticalDrive& operator=(const WindowsOpticalDrive&) = delete;

    // Allows medium removal, forgets the registered handle, gives exclusive access back and
    // closes both handles.
    virtual ~WindowsOpticalDrive();

    // Returns the object to its state after construction, reading the device's properties again.
    virtual void resetVariableForSecondRun();
    virtual void releaseExclusiveAccess();
    // Prevent / allow medium removal; the drive's answer is ignored.
    virtual void lockTray();
    // Stops and ejects, up to five times. Throws EjectError(status) unless the tray ends empty.
    virtual void ejectDisc();
    // Opens the handle, takes exclusive access where the system grants it and registers the
    // handle by device name so that every command goes through it. Throws InvalidHandle when
    // the device cannot be opened.
    virtual void getExclusiveDriveAccess();
    virtual void unlockTray();
    virtual void setWriteParameters();
    // {0xFFFF} (the drive's maximum) on the first call, empty lists afterwards.
    virtual kiv::Array<unsigned int> getSupportedWriteSpeeds();
    // Read and write speed in kB/s. Throws TestFailedException when the drive refuses.
    virtual void setSpeed(unsigned int speed);
    virtual bool formatRequired();
    virtual void formatDisc(unsigned int expectedSeconds, unsigned int startPercent,
                            unsigned int endPercent);
    // Runs FORMAT UNIT on a worker thread with `parms` and reports percent done from
    // startPercent towards endPercent over expectedSeconds (REQUIRES: not 0) while waiting.
    // Throws TestFailedException(status) on failure; a command sequence error (0x2C00) returns
    // quietly.
    virtual void formatDiscImp(tag_CBlankingThreadParms* parms, unsigned int expectedSeconds,
                               unsigned int startPercent, unsigned int endPercent);
    virtual void blankDisc(unsigned int expectedSeconds, unsigned int startPercent,
                           unsigned int endPercent);
    // As formatDiscImp, with a minimal BLANK.
    virtual void blankDiscImp(tag_CBlankingThreadParms* parms, unsigned int expectedSeconds,
                              unsigned int startPercent, unsigned int endPercent);
    // Fills geometry and totalSectors. Throws NoMediaPresent without a disc, InternalException
    // when the device cannot be opened or measured.
    virtual void getDriveGeometry();
    virtual void doOPC();
    // The page `pageCode` from MODE SENSE, pointing into one buffer shared by every object and
    // valid until the next call on any object; null when absent or unreadable.
    virtual unsigned char* getSensePage(int pageCode);
    // Copies min(length, 56) bytes of `page` into `info`, packet size and pause length to host
    // order.
    virtual void parseWritePropertiesPage(unsigned char* page, int length,
                                          WriteParametersInfo* info);
    // Puts `info` (page code from writePageCode, page length `length`, numbers to wire order,
    // in place) and copies length + 2 bytes of it to `out`.
    virtual void disParseWritePropertiesPage(unsigned char* out, int length,
                                             WriteParametersInfo* info);
    // 0 with `info` filled, or -1 when the write parameters page could not be read.
    virtual int getWriteProperties(WriteParametersInfo* info);
    // MODE SELECT of `pageLength` + 2 bytes of `page`; returns the status.
    virtual unsigned long setSensePage(unsigned char* page, unsigned char pageLength, int pageCode);
    virtual unsigned long setWriteProperties(WriteParametersInfo* info);
    // True when the disc information says the disc is blank; false also when it cannot be read.
    virtual bool emptyDisc();
    // True when a profile of requiredProfiles is current; sets requiredMediaFound when the
    // profile list marks one current.
    virtual bool requiredDisc();
    // True when a DVD or HD DVD disc carries a copy protection system.
    virtual bool isMediaCopyProtected();
    virtual bool noMediaPresent(const unsigned long& status);
    virtual bool mediaPresent(const unsigned long& status);
    // Media event probes; false when the drive gives no usable media event, the out argument
    // then untouched.
    virtual bool isMediaPresentGESN(bool& present);
    virtual bool isTrayClosedOrNoTrayGESN(bool& closedOrNoTray);
    virtual bool unknownError(const unsigned long& status);
    // Zeroes `info` and fills it from the raw block `raw` when that holds at least 30 bytes
    // after its length field.
    virtual void parseDiskInfoPage(unsigned char* raw, CDRRDiskInformation* info);
    // Waits for the disc: about 3 s when there is none, up to 75 s for it to become ready and
    // 75 s more for its capacity. Returns the last status. Throws UserAborted on a stop request.
    virtual unsigned long makeSureUnitIsReady();
    // Identifiers of a blank DVD or BD (trimmed, cut at the first zero byte). Throw
    // FailedRetrivingADIPInfo.
    virtual kiv::String getDiscManufacturerID();
    virtual kiv::String getBLUERAYDiscManufacturerID();
    virtual kiv::String getDiscID();
    virtual kiv::String getBLUERAYDiscID();
    // ATIP times of a recordable CD as {minutes, seconds, frames}. Throw FailedRetrivingATIPInfo.
    virtual kiv::Array<unsigned int> getLeadInTime();
    virtual kiv::Array<unsigned int> getLeadOutTime();
    virtual void loadDisc();
    virtual unsigned int getNextWritableAddress();
    virtual unsigned int sectorsToTest();
    virtual void prepareForWrite();
    virtual bool incompatibleMediaInstalled(const unsigned long& status);
    // Reads `count` sectors at `lba` into `buffer` of `bufferBytes`, with forced unit access
    // unless `plainRead`, retrying for 10 s. Throws ReadFailedException or UserAborted.
    virtual void readSectors(const unsigned int& lba, unsigned short count, void* buffer,
                             unsigned long bufferBytes, bool plainRead);
    // Writes `count` sectors of getBytesPerSector() bytes, retrying for 20 s (90 s while the
    // drive reports an operation in progress). Throws WriteFailedException, or
    // InvalidMediaException when the drive cannot read the disc's table of contents.
    virtual void writeSectors(const unsigned int& lba, const unsigned short& count,
                              const void* buffer, const unsigned long& bufferBytes);
    virtual bool completeDisc();
    virtual unsigned long getBytesPerSector() const;
    // Always 2,000,000, whatever the disc.
    virtual unsigned long long getTotalSectorsOnMedia() const;
    virtual unsigned int getMaximumNumberOfTracks();
    // Synchronizes the drive's cache, retrying for 20 s. Throws TestFailedException(status).
    virtual void flushCache();
    virtual void startDrive();
    // Opens the device handle unless it is open; true when it is.
    virtual bool openHandle();
    virtual void closeHandle();
    // The open handle (a HANDLE on Windows, the descriptor cast to a pointer elsewhere); all
    // ones when closed.
    virtual void* getHandle();
    virtual bool mediaRequired();
    // The current write speed in kB/s rounded up to a multiple of 177; 0 when unknown.
    virtual unsigned int getCurrentWriteSpeed();
    virtual unsigned int getNextTrack();
    virtual bool CDRDisc();
    virtual bool CDRWDisc();
    virtual bool DvdminusrDisc();
    virtual bool DvdminusrwDisc();
    virtual bool DvdminusrDLDisc();
    virtual bool DvdplusrDisc();
    virtual bool DvdplusrwDisc();
    virtual bool DvdplusrDLDisc();
    virtual bool BdrDisc();
    virtual bool BdreDisc();
    virtual bool RWDisc();
    // Throw FailedClosingTrack, FailedClosingSession, FailedStoppingBGFormat with the status.
    virtual void closeTrack(unsigned long long track);
    virtual void closeSession();
    virtual void stopBackGroundFormatting();
    // The background format status of the disc information (0 none, 1 started, 2 in progress,
    // 3 completed). Throws TestFailedException(status).
    virtual unsigned int getBGFormatInformation();
    // The current MMC profile. Throws FailedGettingCurrentProfile(status).
    virtual unsigned int getCurrentProfile();
    // PASS when requiredDisc() found the required medium; otherwise raises
    // "CURRENT_PROFILE_NOT_SET" and answers WARN when `warnIfNotRequired`, else PASS.
    virtual quel5::TestResult getPASSCondition(bool warnIfNotRequired);
    // MEDIA_UNKNOWN also when the profile cannot be read.
    virtual MediaType getCurrentMediaType();
    virtual long TestUnitReady();
    // True when a filter driver the device lists is missing from the system.
    virtual bool isDriverFilterMisconfigured();

    // The thread bodies of formatDiscImp and blankDiscImp; `parms` is a tag_CBlankingThreadParms.
    // Each stores the command's status in it and returns 0.
    static unsigned long formatThread(void* parms);
    static unsigned long blankingThread(void* parms);

protected:
    // True when the drive's Real Time Streaming feature is current; `flags` gets its flag byte.
    virtual bool getRealTimeStreamingFeature(unsigned char& flags);

    const quel5::DiagDevice* device;
    kiv::String osLocator;
    kiv::String driveName;
    _SCSI_PATH scsiPath;
    // The OS locator in UTF-8: the name every command and open uses, and the key of the handle
    // in the table of open devices.
    char deviceName[512];
    int32_t writePageCode;
    bool wroteFlag;
    bool readFlag;
    bool geometryValid;
    uint64_t totalSectors;
    bool speedsReported;
    os::NativeHandle handle;
    os::NativeHandle exclusiveHandle;
    DiskGeometry geometry;
    libStorage::ExclusiveAccess exclusiveAccess;
    // MMC profiles that count as the required disc; filled by a host's subclass.
    kiv::Array<unsigned short> requiredProfiles;
    bool requiredMediaFound;

private:
    void readDeviceProperties();
};

}  // namespace kivrlibdrive

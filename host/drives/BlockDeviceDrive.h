// host::BlockDeviceDrive: the concrete hard drive over a real disk or a disk image file.
//
// The device is the DiagDevice's OS locator: a block device (/dev/sdb, /dev/loop0), a physical
// drive (\\.\PhysicalDrive1) or a regular file holding a disk image. Disks report their sector
// size and capacity themselves; an image file has 512-byte sectors unless the device property
// "BytesPerSector" (a number) says otherwise, and its capacity is its size in whole sectors.
//
// Transfers bypass the system's cache where the device allows it (O_DIRECT /
// FILE_FLAG_NO_BUFFERING); a caller's buffer that is not suitably aligned goes through an
// aligned bounce buffer. Files on filesystems without direct I/O are read through the cache.
//
// Reads that walk upward (one after the other, or a constant stride apart) are read ahead on
// worker threads, several at a time (see host/ReadAhead.h): each read still answers with its
// own result, failures included, in the order it is asked. Writes drop what was read ahead of
// the sectors they cover. Other reads are not read ahead.
//
// Results of reads and writes: PASS; FAIL for a request outside the device or not fitting its
// buffer (the device and the buffer are left untouched) and for sectors the device cannot
// transfer; INTERNALERROR when the device is not open or has gone away; DEVICEBUSY for a write
// while the drive is not locked.
//
// The drive holds one handle on the device at a time, and every read, write, flush and read
// ahead goes through it. It is read-only until lock(), which replaces it with a read-write
// handle and takes the disk through the Drive base's locking manager with that same handle:
// Windows lets a locked volume be used only through the handle that locked it. unLock() goes
// back to a read-only handle. A disk it cannot write is refused in lock(), before anything is
// opened for writing.
//
// Not thread-safe; one test uses it at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "drives/BlockDevice.h"
#include "drives/BlockDeviceBuffer.h"
#include "drives/ReadAhead.h"
#include "libDrive/Drive.h"

namespace host {

class UndoJournal;

class BlockDeviceDrive : public kivrlibdrive::Drive {
public:
    // Does not touch the device; call OpenDevice(). `diagDevice` must outlive the drive.
    explicit BlockDeviceDrive(const quel5::DiagDevice& diagDevice);
    ~BlockDeviceDrive() override;

    // Reads and writes move the whole buffer: max(count, bufferSize / sector size) sectors. The
    // cache test asks for one sector with a buffer of 256 and relies on all 256 moving.
    quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count, void* buffer,
                                  unsigned int bufferSize) override;
    // REQUIRES for PASS: lock() answered PASS and unLock() was not called since.
    quel5::TestResult WriteSectors(const uint64_t& startSector, unsigned int count,
                                   const void* buffer, unsigned int bufferSize) override;
    // Reads the sectors into scratch memory. Same results as ReadSectors.
    quel5::TestResult VerifySectors(const uint64_t& startSector, unsigned int count) override;
    // Commits what was written since lock(); PASS at once when the drive is not locked, as
    // unLock() has flushed everything written before.
    quel5::TestResult FlushCache() override;
    // Geometry as found by the last successful OpenDevice(); 0 before.
    uint32_t GetSectorsPerTrack() override;
    uint32_t GetBytesPerSector() override;
    // About 1 MiB worth of sectors.
    uint32_t GetOptimalReadAmount() const override;
    uint64_t GetTotalSectors() override;
    // Nothing to prepare: PASS.
    quel5::TestResult PrepareRead() override;
    // Opens the device read-only and reads its geometry. PASS, or NODEVICE with lastError() set.
    // PASS at once when already open.
    quel5::TestResult OpenDevice() override;
    // Closes the device's handle. PASS.
    quel5::TestResult CloseDevice() override;
    bool IsWriteProtected() override;
    // The file descriptor (Windows: the HANDLE) of the one handle every transfer goes through,
    // as a pointer: read-only, or while locked the read-write one the lock was taken with.
    // invalidDriveHandle() when closed. It changes on lock() and unLock().
    void* GetHandle() override;
    // Reopens the device for reading and writing, then Drive::lock() through that handle.
    // DEVICEBUSY (the "DeviceBusy" event raised, lockFailure() set, nothing locked, the drive
    // back on a read-only handle) when the device is write-protected (checked first, before
    // any open), when it cannot be opened for writing and when the volumes cannot be taken.
    quel5::TestResult lock() override;
    // Flushes, Drive::unLock() (through the handle that took the lock), then reopens the device
    // read-only; when that reopen fails the drive is closed (lastError() says why). PASS.
    quel5::TestResult unLock() override;
    // No removable medium to check: false, and CheckMedia answers PASS.
    bool NeedsMediaCheck() override;
    quel5::TestResult CheckMedia(bool flag) override;
    // A failing disk is not retried: false, false.
    bool IsRerunAllowed() override;
    bool ConfirmRerun() override;

    // From now on every write first journals what it overwrites in `journal` (not owned; it
    // must outlive the drive or be detached with nullptr), and the journal learns of every
    // write and every flush of the device. Defined in BlockDeviceDriveUndo.cpp.
    void attachUndoJournal(UndoJournal* journal);

    const std::string& path() const { return path_; }
    // Milliseconds the device spent on the reads of the last ReadSectors or VerifySectors: a
    // read answered from read-ahead counts the time its block's own read took, not the time
    // the caller waited for it.
    uint64_t lastReadMilliseconds() const { return readMs_; }
    // True when transfers currently bypass the system's cache.
    bool usesDirectIo() const { return direct_; }
    bool isImageFile() const { return kind_ == blockdevice::Kind::ImageFile; }
    // Why the last failing operation failed, for a person (UTF-8).
    const std::string& lastError() const { return lastError_; }
    // Why the last lock() was refused, for a person (UTF-8): the mount point, the loop device,
    // the read-only device. "" when it was not refused or lock() was never called.
    const std::string& lockFailure() const { return lockFailure_; }
    // What read-ahead did since the device's handle last changed: opened, locked, unlocked or
    // reopened without direct I/O.
    ReadAheadCounters readAheadCounters() const;

private:
    enum class Direction { Read, Write };

    // False (with lastError_ set) unless `count` >= 1 sectors from `startSector` lie on the
    // device.
    bool acceptsRange(uint64_t startSector, unsigned int count);
    // False (with lastError_ set) unless `count` sectors fit `bufferSize` bytes at `buffer`.
    bool acceptsBuffer(unsigned int count, const void* buffer, unsigned int bufferSize);
    unsigned int wholeBufferCount(unsigned int count, unsigned int bufferSize) const;
    quel5::TestResult transfer(Direction direction, uint64_t startSector, unsigned int count,
                               unsigned char* buffer);
    os::IoResult move(Direction direction, uint64_t offset, unsigned char* buffer, size_t bytes);
    // Makes `opened` (REQUIRES: no error) the drive's handle, closing the previous one,
    // restarts read-ahead over it and, while locked, hands it to the locking manager.
    void switchHandle(blockdevice::Opened opened, bool writable);
    // Replaces the handle by a read-only one. False (lastError_ set, the drive closed) when the
    // device cannot be reopened.
    bool reopenReadOnly();
    // Reopens the handle, as writable as it was, without direct I/O. False when the device
    // cannot be reopened (the old handle stays).
    bool reopenCached();
    // Read-ahead over handle_. REQUIRES: handle_ is open.
    void startReadAhead();
    quel5::TestResult failed(const std::string& why, quel5::TestResult result);
    // Records `why` as the lock's failure and reports DEVICEBUSY through the Drive base.
    quel5::TestResult refuseLock(const std::string& why);
    // The sectors as the device holds them, bypassing read-ahead: the undo journal's source.
    bool readFromDevice(uint64_t first, uint32_t count, unsigned char* into, std::string* error);
    // Commits what was written through the read-write handle; nothing to do on a read-only one,
    // as unLock() flushed before it gave the read-write handle up.
    os::Error flushWritten();
    // Tells the undo journal that the device has committed every completed write.
    void confirmFlushToJournal();
    uint32_t imageSectorSize() const;

    std::string path_;
    blockdevice::Kind kind_ = blockdevice::Kind::Disk;
    // Read-only, or read-write (writable_) from lock() to unLock().
    os::DeviceHandle handle_;
    bool writable_ = false;
    bool direct_ = false;
    bool writeProtected_ = false;
    uint32_t bytesPerSector_ = 0;
    uint32_t sectorsPerTrack_ = 0;
    uint64_t totalSectors_ = 0;
    size_t alignment_ = 0;
    AlignedBuffer bounce_;
    AlignedBuffer scratch_;
    std::string lastError_;
    std::string lockFailure_;
    UndoJournal* undo_ = nullptr;
    uint64_t readMs_ = 0;
    // Last, so that its reads in flight end before the handles close.
    std::unique_ptr<ReadAhead> readAhead_;
};

// Opens the device named by `device`'s OS locator as a BlockDeviceDrive that records its
// operations (drives/RecordingDrive.h). nullptr when it cannot
// be opened, with the reason in *error (when error is not null). `device` must outlive the
// drive.
std::unique_ptr<kivrlibdrive::Drive> openBlockDrive(const quel5::DiagDevice& device,
                                                    std::string* error);

}  // namespace host

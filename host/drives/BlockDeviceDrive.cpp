#include "drives/BlockDeviceDrive.h"

#include <algorithm>
#include <cstring>

#include "drives/RecordingDrive.h"
#include "drives/UndoJournal.h"
#include "kiv/Log.h"
#include "os/Clock.h"
#include "os/Utf8.h"

namespace host {
namespace {

using quel5::TestResult;

// Big enough to stream at the disk's speed, small enough to stay cheap per call.
constexpr uint32_t kPreferredTransferBytes = 1024 * 1024;
// Direct I/O wants buffers aligned to the logical sector size; a page covers every usual one.
constexpr size_t kMinimumAlignment = 4096;
constexpr uint32_t kDefaultImageSectorSize = 512;
// Reads kept in flight ahead of a sweep: enough to keep a disk's queue busy.
constexpr unsigned kReadAheadDepth = 8;
// Larger requests are not read ahead, which keeps memory at a few MiB.
constexpr size_t kReadAheadLargestBlock = 4 * kPreferredTransferBytes;

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    if (slot == nullptr) {
        kiv::LogFactory::createLogger(L"host.BlockDeviceDrive", &slot);
    }
    return slot;
}

void logText(kiv::LogPriority priority, const std::string& text) {
    logger()->log(static_cast<int>(priority), kiv::String::fromUtf8(text));
}

bool isAligned(const void* address, size_t alignment) {
    return reinterpret_cast<std::uintptr_t>(address) % alignment == 0;
}

}  // namespace

BlockDeviceDrive::BlockDeviceDrive(const quel5::DiagDevice& diagDevice)
    : Drive(diagDevice), path_(diagDevice.osLocator().toUtf8()) {}

BlockDeviceDrive::~BlockDeviceDrive() = default;

uint32_t BlockDeviceDrive::imageSectorSize() const {
    const quel5::DeviceProperty* property = device.property(L"BytesPerSector");
    return property == nullptr ? kDefaultImageSectorSize : property->value().valueUint32();
}

TestResult BlockDeviceDrive::OpenDevice() {
    if (handle_.valid()) {
        return TestResult::PASS;
    }
    blockdevice::Opened opened = blockdevice::openDevice(path_, false, true);
    if (!opened.error.ok()) {
        return failed(opened.error.message, TestResult::NODEVICE);
    }
    const os::GeometryResult found = os::queryDiskGeometry(opened.handle);
    if (!found.error.ok()) {
        return failed(path_ + ": " + found.error.message, TestResult::NODEVICE);
    }
    const uint32_t sectorSize = opened.kind == blockdevice::Kind::ImageFile
                                    ? imageSectorSize()
                                    : found.geometry.bytesPerSector;
    if (sectorSize == 0) {
        return failed(path_ + ": the sector size is 0", TestResult::NODEVICE);
    }
    kind_ = opened.kind;
    bytesPerSector_ = sectorSize;
    totalSectors_ = found.geometry.totalBytes / sectorSize;
    sectorsPerTrack_ = found.geometry.sectorsPerTrack;
    alignment_ = kMinimumAlignment;
    while (alignment_ < sectorSize) {
        alignment_ *= 2;
    }
    writeProtected_ = blockdevice::isWriteProtected(path_, kind_, opened.handle.native());
    switchHandle(std::move(opened), false);
    return TestResult::PASS;
}

void BlockDeviceDrive::switchHandle(blockdevice::Opened opened, bool writable) {
    // Its reads go through the handle about to close.
    readAhead_.reset();
    handle_ = std::move(opened.handle);
    direct_ = opened.direct;
    writable_ = writable;
    startReadAhead();
    if (lockingManager.isLocked()) {
        // Only image files reopen while locked; their lock is held on a handle of its own
        // (Windows: a duplicate of the old one), which the old handle's closing does not
        // release.
        lockingManager.setDriveHandle(handle_.native());
    }
}

os::Error BlockDeviceDrive::flushWritten() {
    return writable_ ? blockdevice::flush(handle_.native()) : os::Error{};
}

bool BlockDeviceDrive::reopenReadOnly() {
    blockdevice::Opened opened = blockdevice::openDevice(path_, false, direct_);
    if (!opened.error.ok()) {
        CloseDevice();
        failed(path_ + " cannot be reopened for reading: " + opened.error.message,
               TestResult::INTERNALERROR);
        return false;
    }
    switchHandle(std::move(opened), false);
    return true;
}

void BlockDeviceDrive::startReadAhead() {
    const os::NativeHandle handle = handle_.native();
    readAhead_ = std::make_unique<ReadAhead>(
        [handle](uint64_t offset, unsigned char* buffer, size_t bytes) {
            return os::readAt(handle, offset, buffer, bytes);
        },
        totalSectors_ * bytesPerSector_, alignment_, kReadAheadDepth, kReadAheadLargestBlock);
}

ReadAheadCounters BlockDeviceDrive::readAheadCounters() const {
    return readAhead_ == nullptr ? ReadAheadCounters{} : readAhead_->counters();
}

TestResult BlockDeviceDrive::CloseDevice() {
    readAhead_.reset();
    handle_.close();
    writable_ = false;
    return TestResult::PASS;
}

void* BlockDeviceDrive::GetHandle() { return blockdevice::toDriveHandle(handle_.native()); }

TestResult BlockDeviceDrive::ReadSectors(const uint64_t& startSector, unsigned int count,
                                         void* buffer, unsigned int bufferSize) {
    readMs_ = 0;
    if (!handle_.valid()) {
        return failed(path_ + " is not open", TestResult::INTERNALERROR);
    }
    const unsigned int sectors = wholeBufferCount(count, bufferSize);
    if (!acceptsRange(startSector, sectors) || !acceptsBuffer(sectors, buffer, bufferSize)) {
        return TestResult::FAIL;
    }
    return transfer(Direction::Read, startSector, sectors, static_cast<unsigned char*>(buffer));
}

TestResult BlockDeviceDrive::WriteSectors(const uint64_t& startSector, unsigned int count,
                                          const void* buffer, unsigned int bufferSize) {
    if (!handle_.valid()) {
        return failed(path_ + " is not open", TestResult::INTERNALERROR);
    }
    if (!lockingManager.isLocked()) {
        // A disk nobody locked may be mounted or in use: never write it.
        return failed(path_ + " is written only while locked", TestResult::DEVICEBUSY);
    }
    const unsigned int sectors = wholeBufferCount(count, bufferSize);
    if (!acceptsRange(startSector, sectors) || !acceptsBuffer(sectors, buffer, bufferSize)) {
        return TestResult::FAIL;
    }
    if (!writable_) {
        return failed(path_ + " cannot be written", TestResult::FAIL);
    }
    std::string why;
    if (undo_ != nullptr && !undo_->beforeOverwrite(startSector, sectors, &why)) {
        return failed(path_ + ": not written, its data could not be journaled: " + why,
                      TestResult::FAIL);
    }
    // The bytes are only read from: a write never moves data into the caller's buffer.
    auto* bytes = static_cast<unsigned char*>(const_cast<void*>(buffer));
    const TestResult written = transfer(Direction::Write, startSector, sectors, bytes);
    if (undo_ != nullptr)
        undo_->afterWrite(startSector, sectors, bytes, written == TestResult::PASS);
    return written;
}

TestResult BlockDeviceDrive::VerifySectors(const uint64_t& startSector, unsigned int count) {
    readMs_ = 0;
    if (!handle_.valid()) {
        return failed(path_ + " is not open", TestResult::INTERNALERROR);
    }
    if (!acceptsRange(startSector, count)) {
        return TestResult::FAIL;
    }
    const uint32_t chunk = GetOptimalReadAmount();
    unsigned char* scratch = scratch_.reserve(size_t{chunk} * bytesPerSector_, alignment_);
    for (unsigned int done = 0; done < count;) {
        const unsigned int sectors = std::min(count - done, chunk);
        const TestResult result = transfer(Direction::Read, startSector + done, sectors, scratch);
        if (result != TestResult::PASS) {
            return result;
        }
        done += sectors;
    }
    return TestResult::PASS;
}

TestResult BlockDeviceDrive::FlushCache() {
    if (!handle_.valid()) {
        return failed(path_ + " is not open", TestResult::INTERNALERROR);
    }
    const os::Error error = flushWritten();
    if (!error.ok()) {
        return failed(path_ + ": " + error.message, blockdevice::isDeviceGone(error.code)
                                                        ? TestResult::INTERNALERROR
                                                        : TestResult::FAIL);
    }
    confirmFlushToJournal();
    return TestResult::PASS;
}

TestResult BlockDeviceDrive::lock() {
    lockFailure_.clear();
    if (writeProtected_) {
        // Refused before any write: a test must not learn it from a row of failed writes.
        return refuseLock(path_ + " is read-only (write-protected)");
    }
    if (handle_.valid() && !writable_) {
        blockdevice::Opened opened = blockdevice::openDevice(path_, true, direct_);
        if (!opened.error.ok()) {
            return refuseLock(path_ + " cannot be opened for writing: " + opened.error.message);
        }
        // Windows refuses to lock a volume with anything open on it, and a locked volume
        // answers only the handle that locked it: the read-write handle replaces the read-only
        // one before the lock and carries every transfer until unLock().
        switchHandle(std::move(opened), true);
    }
    lockingManager.setDriveHandle(handle_.native());
    const TestResult locked = Drive::lock();
    if (locked != TestResult::PASS) {
        lockFailure_ = os::toUtf8(lockingManager.lastFailure());
        failed(lockFailure_, locked);
        lockingManager.setDriveHandle(os::invalidNativeHandle());
        if (writable_) {
            reopenReadOnly();
        }
    }
    return locked;
}

TestResult BlockDeviceDrive::refuseLock(const std::string& why) {
    lockFailure_ = why;
    failed(why, TestResult::DEVICEBUSY);
    return ReportDeviceBusy();
}

TestResult BlockDeviceDrive::unLock() {
    if (const os::Error error = flushWritten(); !error.ok()) {
        logText(kiv::LogPriority::Warning, path_ + ": " + error.message);
    } else {
        confirmFlushToJournal();
    }
    // Released through the handle that took it, so before that handle closes.
    const TestResult unlocked = Drive::unLock();
    lockingManager.setDriveHandle(os::invalidNativeHandle());
    if (writable_) {
        reopenReadOnly();
    }
    return unlocked;
}

unsigned int BlockDeviceDrive::wholeBufferCount(unsigned int count, unsigned int bufferSize) const {
    // A request for no sectors stays one, and is refused as such.
    if (count == 0 || bytesPerSector_ == 0) {
        return count;
    }
    return std::max(count, bufferSize / bytesPerSector_);
}

bool BlockDeviceDrive::acceptsRange(uint64_t startSector, unsigned int count) {
    if (count == 0) {
        failed(path_ + ": no sectors asked", TestResult::FAIL);
        return false;
    }
    if (startSector >= totalSectors_ || count > totalSectors_ - startSector) {
        failed(path_ + ": sectors " + std::to_string(startSector) + " + " + std::to_string(count) +
                   " lie outside its " + std::to_string(totalSectors_),
               TestResult::FAIL);
        return false;
    }
    return true;
}

bool BlockDeviceDrive::acceptsBuffer(unsigned int count, const void* buffer,
                                     unsigned int bufferSize) {
    if (buffer == nullptr || uint64_t{count} * bytesPerSector_ > bufferSize) {
        failed(path_ + ": " + std::to_string(count) + " sectors do not fit " +
                   std::to_string(buffer == nullptr ? 0 : bufferSize) + " bytes",
               TestResult::FAIL);
        return false;
    }
    return true;
}

TestResult BlockDeviceDrive::transfer(Direction direction, uint64_t startSector, unsigned int count,
                                      unsigned char* buffer) {
    const uint64_t offset = startSector * bytesPerSector_;
    const size_t bytes = size_t{count} * bytesPerSector_;
    os::IoResult moved;
    if (direction == Direction::Write) {
        readAhead_->invalidate(offset, bytes);
        moved = move(direction, offset, buffer, bytes);
    } else if (uint64_t aheadMs = 0; readAhead_->serve(offset, bytes, buffer, &moved, &aheadMs)) {
        readMs_ += aheadMs;
    } else {
        const uint64_t started = os::clock().monotonicMilliseconds();
        moved = move(direction, offset, buffer, bytes);
        readMs_ += os::clock().monotonicMilliseconds() - started;
    }
    if (!moved.error.ok() && direct_ && kind_ == blockdevice::Kind::ImageFile &&
        blockdevice::isDirectTransferRefused(moved.error.code)) {
        logText(kiv::LogPriority::Notice,
                path_ + " refuses direct transfers of its sector size; using cached I/O");
        if (!reopenCached()) {
            return failed(path_ + " cannot be reopened", TestResult::INTERNALERROR);
        }
        moved = move(direction, offset, buffer, bytes);
    }
    if (!moved.error.ok()) {
        return failed(
            path_ + " at sector " + std::to_string(startSector) + ": " + moved.error.message,
            blockdevice::isDeviceGone(moved.error.code) ? TestResult::INTERNALERROR
                                                        : TestResult::FAIL);
    }
    if (moved.bytes != bytes) {
        return failed(path_ + " ended within sectors " + std::to_string(startSector) + " + " +
                          std::to_string(count),
                      TestResult::FAIL);
    }
    return TestResult::PASS;
}

os::IoResult BlockDeviceDrive::move(Direction direction, uint64_t offset, unsigned char* buffer,
                                    size_t bytes) {
    const os::NativeHandle handle = handle_.native();
    if (!direct_ || isAligned(buffer, alignment_)) {
        return direction == Direction::Read ? os::readAt(handle, offset, buffer, bytes)
                                            : os::writeAt(handle, offset, buffer, bytes);
    }
    const size_t chunk = std::max<size_t>(
        bytesPerSector_, kPreferredTransferBytes / bytesPerSector_ * bytesPerSector_);
    unsigned char* bounce = bounce_.reserve(std::min(chunk, bytes), alignment_);
    os::IoResult total;
    while (total.bytes < bytes) {
        const size_t piece = std::min(chunk, bytes - total.bytes);
        os::IoResult step;
        if (direction == Direction::Read) {
            step = os::readAt(handle, offset + total.bytes, bounce, piece);
            std::memcpy(buffer + total.bytes, bounce, step.bytes);
        } else {
            std::memcpy(bounce, buffer + total.bytes, piece);
            step = os::writeAt(handle, offset + total.bytes, bounce, piece);
        }
        total.bytes += step.bytes;
        if (!step.error.ok() || step.bytes < piece) {
            total.error = std::move(step.error);
            break;
        }
    }
    return total;
}

bool BlockDeviceDrive::reopenCached() {
    blockdevice::Opened reopened = blockdevice::openDevice(path_, writable_, false);
    if (!reopened.error.ok()) {
        return false;
    }
    switchHandle(std::move(reopened), writable_);
    return true;
}

TestResult BlockDeviceDrive::failed(const std::string& why, TestResult result) {
    lastError_ = why;
    logText(kiv::LogPriority::Warning, why);
    return result;
}

uint32_t BlockDeviceDrive::GetSectorsPerTrack() { return sectorsPerTrack_; }

uint32_t BlockDeviceDrive::GetBytesPerSector() { return bytesPerSector_; }

uint32_t BlockDeviceDrive::GetOptimalReadAmount() const {
    return bytesPerSector_ == 0 ? 0
                                : std::max<uint32_t>(1, kPreferredTransferBytes / bytesPerSector_);
}

uint64_t BlockDeviceDrive::GetTotalSectors() { return totalSectors_; }

TestResult BlockDeviceDrive::PrepareRead() { return TestResult::PASS; }

bool BlockDeviceDrive::IsWriteProtected() { return writeProtected_; }

bool BlockDeviceDrive::NeedsMediaCheck() { return false; }

TestResult BlockDeviceDrive::CheckMedia(bool /*flag*/) { return TestResult::PASS; }

bool BlockDeviceDrive::IsRerunAllowed() { return false; }

bool BlockDeviceDrive::ConfirmRerun() { return false; }

std::unique_ptr<kivrlibdrive::Drive> openBlockDrive(const quel5::DiagDevice& device,
                                                    std::string* error) {
    auto drive = std::make_unique<RecordingDrive<BlockDeviceDrive>>(device);
    if (drive->OpenDevice() != quel5::TestResult::PASS) {
        if (error != nullptr) {
            *error = drive->lastError();
        }
        return nullptr;
    }
    return drive;
}

}  // namespace host

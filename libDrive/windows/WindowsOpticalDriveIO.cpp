// Sector reads and writes and the cache flush, each retried on the one clock.
#include "OpticalDriveLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "os/Clock.h"
#include "quel5/DiagModule.h"
#include "scsi/BlockCommands.h"
#include "scsi/Status.h"
#include "scsi/UnitCommands.h"

namespace kivrlibdrive {
namespace {

using optical::millisecondsSince;

constexpr uint32_t kReadWindowMs = 10000;
constexpr uint32_t kReadTimeoutSeconds = 10;
// After the device vanished: give it time to come back before the caller moves on.
constexpr uint32_t kDeviceGonePauseMs = 12000;
constexpr uint32_t kWriteWindowMs = 20000;
// A drive still busy with an earlier operation (0407, 0408) is given longer.
constexpr uint32_t kBusyWriteWindowMs = 90000;
constexpr uint32_t kWriteTimeoutSeconds = 300;
constexpr uint32_t kFlushWindowMs = 20000;
constexpr uint32_t kFlushTimeoutSeconds = 300;
constexpr uint32_t kRetryPauseMs = 100;
constexpr uint32_t kFuaRejected = 0x2400;
constexpr uint32_t kCannotReadTableOfContents = 0x5700;

bool operationInProgress(uint32_t status) { return status == 0x0407 || status == 0x0408; }

}  // namespace

void WindowsOpticalDrive::readSectors(const unsigned int& lba, unsigned short count, void* buffer,
                                      unsigned long bufferBytes, bool plainRead) {
    const auto bytes = static_cast<uint32_t>(bufferBytes);
    uint32_t status = kivscsi::kStatusTimedOut;
    const uint32_t start = os::tickCount();
    while (millisecondsSince(start) < kReadWindowMs) {
        if (quel5::DiagModule::checkForStop()) {
            throw UserAborted(L"Test Aborted by the user during the Reading process");
        }
        if (!plainRead) {
            status = kivscsi::ReadBlocksFUAEx(scsiPath, deviceName, buffer, bytes, lba, count);
        }
        // Drives that refuse forced unit access are read plainly within the same attempt.
        if (status == kFuaRejected || plainRead) {
            status = kivscsi::ReadBlocksTimedEx(scsiPath, deviceName, buffer, bytes, lba, count,
                                                kReadTimeoutSeconds);
        }
        readFlag = true;
        if (status == 0) {
            return;
        }
        if (kivscsi::isDeviceGone(status)) {
            os::sleepMilliseconds(kDeviceGonePauseMs);
            throw ReadFailedException(lba, status);
        }
        os::sleepMilliseconds(kRetryPauseMs);
    }
    throw ReadFailedException(lba, status);
}

void WindowsOpticalDrive::writeSectors(const unsigned int& lba, const unsigned short& count,
                                       const void* buffer, const unsigned long& /*bufferBytes*/) {
    uint32_t status = 0;
    const uint32_t start = os::tickCount();
    do {
        status = kivscsi::WriteBlocksEx(scsiPath, deviceName, buffer,
                                        static_cast<uint32_t>(getBytesPerSector()), lba, count,
                                        kWriteTimeoutSeconds);
        wroteFlag = true;
        if (status == 0) {
            return;
        }
        os::sleepMilliseconds(kRetryPauseMs);
    } while (millisecondsSince(start) < kWriteWindowMs ||
             (operationInProgress(status) && millisecondsSince(start) < kBusyWriteWindowMs));

    if (status == kCannotReadTableOfContents) {
        quel5::DiagModule::informative(LibDriveStrings::g_EventRerunTest, optical::kSource, 1114);
        throw InvalidMediaException(
            L"The drive could not read the Table of Contents from the Media.");
    }
    throw WriteFailedException(lba, status);
}

void WindowsOpticalDrive::flushCache() {
    uint32_t status = 0;
    const uint32_t start = os::tickCount();
    do {
        status = kivscsi::KIVR_SynchronizeCache(scsiPath, deviceName, kFlushTimeoutSeconds);
        if (status == 0) {
            optical::log(2, 1204, L"Passed Synchronize cache ");
            return;
        }
        optical::log(2, 1208, L"Failed Synchronize cache ");
        os::sleepMilliseconds(kRetryPauseMs);
    } while (millisecondsSince(start) < kFlushWindowMs);
    throw TestFailedException(status);
}

}  // namespace kivrlibdrive

// The read/write test's write and verify passes: speeds, the write pass, the cache flush and
// the read-back with its forced re-read on a mismatch.
#include <cstring>

#include "ReadWriteTestLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/ReadWriteTest.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {

using readwrite::kSource;
using readwrite::log;
using readwrite::number;

namespace {

constexpr unsigned int kMaximumSpeed = 0xFFFF;
// Added to the speed before it is shown; hosts' texts expect the shifted value.
constexpr unsigned long kShownSpeedOffset = 176;

constexpr unsigned int kCommunicationCrcError = 0x0803;
constexpr unsigned int kLongWriteInProgress = 0x0408;
constexpr unsigned int kCannotReadMedium = 0x5700;

const wchar_t* const kCrcWhileWriting =
    L"The Test has failed because of 0x0803: LOGICAL UNIT COMMUNICATION CRC ERROR "
    L"(ULTRA-DMA/32) while writing to sector ";
const wchar_t* const kCrcWhileReading =
    L"The Test has failed because of 0x0803: LOGICAL UNIT COMMUNICATION CRC ERROR "
    L"(ULTRA-DMA/32) while reading from sector ";

// The CRC failure's message: the text from the position the sector number gives onward, and
// nothing when that lies at or past its end.
kiv::String crcMessage(const wchar_t* text, uint64_t sector) {
    const kiv::String whole(text);
    if (sector >= whole.length()) return {};
    return whole.substring(static_cast<std::size_t>(sector));
}

}  // namespace

void ReadWriteTest::setWriteParameters() { drive.setWriteParameters(); }

void ReadWriteTest::prepareDriveForWrite() { drive.prepareForWrite(); }

void ReadWriteTest::getSupportedWriteSpeeds() {
    speeds = drive.getSupportedWriteSpeeds();
    speedCount = static_cast<uint32_t>(speeds.size());
    speedListSet = true;
}

void ReadWriteTest::setSpeed(unsigned int speed) {
    try {
        drive.setSpeed(speed);
    } catch (const FailedSettingDriveSpeed& slower) {
        strings.errorRequiredSpeedNotReached(slower.getDesiredSpeed(), slower.getActualSpeed());
    } catch (const TestFailedException& refused) {
        strings.showError(LibDriveStrings::g_ErrorEventSettingSpeed, refused.getStatus());
        throw;
    }
    currentSpeed = speed;
    if (speed != kMaximumSpeed) strings.runningAtSpeedMessage(speed + kShownSpeedOffset);
}

void ReadWriteTest::prepareWriteBuffer(uint64_t current) {
    if (current == 0 && parameters.limitMediaUsage()) {
        const unsigned int uses = usageCount + 1u;
        writeBuffer[0] = writeBuffer[2] = static_cast<unsigned char>(uses >> 8);
        writeBuffer[1] = writeBuffer[3] = static_cast<unsigned char>(uses & 0xFF);
        return;
    }
    // Undo a marker written for sector 0: each byte takes the fill byte after it.
    for (int i = 3; i >= 0; --i) writeBuffer[i] = writeBuffer[i + 1];
}

void ReadWriteTest::countError(const wchar_t* tooMany) {
    errorCount += 1;
    if (errorCount > GetMaxErrors()) throw TestFailedException(tooMany);
}

void ReadWriteTest::write() {
    writePass += 2;
    uint64_t current = startSector;
    while (current < endSector) {
        prepareWriteBuffer(current);
        if (quel5::DiagModule::checkForStop()) {
            drive.flushCache();
            closeDisc();
            drive.unlockTray();
            drive.releaseExclusiveAccess();
            throw UserAborted(L"Test Aborted by User");
        }
        showWriteProgress(current);
        try {
            const auto lba = static_cast<unsigned int>(current);
            const auto count = static_cast<unsigned short>(sectorsPerTransfer);
            const unsigned long bytes = bufferSize;
            drive.writeSectors(lba, count, writeBuffer, bytes);
        } catch (const WriteFailedException& failed) {
            const uint64_t sector = failed.getSectorNumber();
            const unsigned int code = failed.getErrorCode();
            if (code == kCommunicationCrcError) {
                strings.communicationCRCErrorEvent();
                throw TestFailedException(crcMessage(kCrcWhileWriting, sector));
            }
            if (code == kLongWriteInProgress) {
                strings.writeTimeoutEvent(sector);
                drive.releaseExclusiveAccess();
                throw TimedOutException(
                    L"The test never recovered from the LONG WRITE IN PROGRESS.");
            }
            if (code == kCannotReadMedium) {
                drive.releaseExclusiveAccess();
                strings.incompatibleMediumInstalledEvent(strings.invalidMediaEvent());
                throw InvalidMediaException(L"");
            }
            strings.writeFailedEvent(sector, code);
            log(4, 804, L"Failed to write to sector " + number(sector) + L": " + number(code));
            drive.flushCache();
            countError(L"The test has failed because of too many write errors.");
        }
        current += sectorsPerTransfer;
    }
}

void ReadWriteTest::flushBuffer() {
    strings.flushingCacheProgressMessage();
    try {
        drive.flushCache();
    } catch (const TestFailedException& failed) {
        strings.showError(LibDriveStrings::g_ErrorEventSynchronizingCache, failed.getStatus());
        throw;
    }
}

void ReadWriteTest::readCompare() {
    readPass += 2;
    uint64_t current = startSector;
    bool firstTry = true;
    while (current < endSector) {
        prepareWriteBuffer(current);
        if (quel5::DiagModule::checkForStop()) {
            closeDisc();
            drive.unlockTray();
            drive.releaseExclusiveAccess();
            throw UserAborted(L"Test Aborted by User");
        }
        if (firstTry) showReadProgress(current);
        try {
            const auto lba = static_cast<unsigned int>(current);
            // A first try may come from the drive's cache; a second one is read from the disc.
            drive.readSectors(lba, static_cast<unsigned short>(sectorsPerTransfer), readBuffer,
                              bufferSize, firstTry);
        } catch (const ReadFailedException& failed) {
            const uint64_t sector = failed.getSectorNumber();
            const unsigned int code = failed.getErrorCode();
            if (code == kCommunicationCrcError) {
                strings.communicationCRCErrorEvent();
                throw TestFailedException(crcMessage(kCrcWhileReading, sector));
            }
            strings.readFailedEvent(sector, code);
            log(4, 939, L"Failed to read from sector " + number(sector) + L": " + number(code));
            countError(L"The test has failed because of too may read errors.");
            current += sectorsPerTransfer;
            continue;
        }
        const std::size_t compared = std::size_t{bytesPerSector} * sectorsPerTransfer;
        if (std::memcmp(writeBuffer, readBuffer, compared) == 0) {
            firstTry = true;
            current += sectorsPerTransfer;
        } else if (firstTry) {
            log(4, 951,
                L"Data in the cache did not match the write buffer at sector " + number(current));
            firstTry = false;
        } else {
            LibDriveStrings::g_errorEventDataCompareFailed->setVariable(L"TestSector", current);
            quel5::DiagModule::error(LibDriveStrings::g_errorEventDataCompareFailed, kSource, 955);
            countError(L"Data Comparison Failed");
            firstTry = true;
            current += sectorsPerTransfer;
        }
    }
}

}  // namespace kivrlibdrive

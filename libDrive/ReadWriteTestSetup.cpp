// The read/write test's sizes and buffers, its timing log lines and its progress reports.
#include <cstring>
#include <new>
#include <typeinfo>

#include "ReadWriteTestLog.h"
#include "kiv/System.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/ReadWriteTest.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {

using readwrite::kSource;
using readwrite::log;
using readwrite::number;

namespace {

constexpr unsigned char kFillByte = 0xBD;
constexpr uint64_t kProgressIntervalMs = 1000;

kiv::String clockText(const os::LocalTime& time) {
    return number(time.hour) + L":" + number(time.minute) + L":" + number(time.second);
}

}  // namespace

bool ReadWriteTest::driveSays(bool (WindowsOpticalDrive::*predicate)()) {
    if (typeid(drive) == typeid(WindowsOpticalDrive)) return false;
    return (drive.*predicate)();
}

void ReadWriteTest::allocateMemory() {
    releaseMemory();
    try {
        writeBuffer = new unsigned char[bufferSize];
        readBuffer = new unsigned char[bufferSize];
    } catch (const std::bad_alloc&) {
        releaseMemory();
        quel5::DiagModule::warning(LibDriveStrings::g_WarnEventMemoryAllocationError, kSource,
                                   1291);
        throw InternalException(L"There was error allocating data buffer");
    }
    std::memset(writeBuffer, kFillByte, bufferSize);
}

void ReadWriteTest::releaseMemory() {
    delete[] writeBuffer;
    writeBuffer = nullptr;
    delete[] readBuffer;
    readBuffer = nullptr;
}

unsigned int ReadWriteTest::sectorsToTest() { return drive.sectorsToTest(); }

unsigned int ReadWriteTest::GetMaxErrors() { return 0; }

void ReadWriteTest::getNextWritableAddress() {
    try {
        startSector = drive.getNextWritableAddress();
    } catch (const FailedReadingTrackInformation& failed) {
        log(4, 663, failed.getMessage());
        quel5::DiagModule::error(LibDriveStrings::g_ErrorEventDriveIOReadTOCFailure, kSource, 665);
        throw TestFailedException(failed.getMessage());
    }
    sectorsPerTransfer = sectorsToTest();
    endSector = static_cast<uint64_t>(sectorsToTestCount) + startSector;
}

void ReadWriteTest::getDriveGeometry() {
    strings.obtainingDriveCapacityEvent();
    // The sizes are needed even when the drive could not be measured.
    const auto takeSizes = [this] {
        bytesPerSector = static_cast<uint32_t>(drive.getBytesPerSector());
        sectorsPerTransfer = sectorsToTest();
        bufferSize = bytesPerSector * sectorsPerTransfer;
    };
    try {
        drive.getDriveGeometry();
    } catch (const InternalException&) {
        takeSizes();
        throw;
    }
    takeSizes();
}

void ReadWriteTest::startTimingTest() {
    startTime = os::localTime();
    log(2, 1672, L"Test Start Time : " + clockText(startTime));
}

void ReadWriteTest::endTimingTest() {
    endTime = os::localTime();
    log(2, 1680, L"Test End Time : " + clockText(endTime));
    // The borrows change the stored end time and are not carried further: a seconds borrow
    // can leave the minutes at -1.
    if (endTime.hour < startTime.hour) endTime.hour = static_cast<uint16_t>(endTime.hour + 24);
    if (endTime.minute < startTime.minute) {
        endTime.hour = static_cast<uint16_t>(endTime.hour - 1);
        endTime.minute = static_cast<uint16_t>(endTime.minute + 60);
    }
    if (endTime.second < startTime.second) {
        endTime.minute = static_cast<uint16_t>(endTime.minute - 1);
        endTime.second = static_cast<uint16_t>(endTime.second + 60);
    }
    const uint32_t hours = uint32_t{endTime.hour} - uint32_t{startTime.hour};
    const uint32_t minutes = uint32_t{endTime.minute} - uint32_t{startTime.minute};
    const uint32_t seconds = uint32_t{endTime.second} - uint32_t{startTime.second};
    log(2, 1697,
        L"Total Test Time : " + number(hours) + L" hours " + number(minutes) + L" minutes and " +
            number(seconds) + L" seconds");
}

void ReadWriteTest::showWriteProgress(const unsigned long long& current) {
    now = kiv::System::getCurrentTimeMilliseconds();
    if (now - lastProgressTime > kProgressIntervalMs) {
        updateProgressPercentage(static_cast<uint64_t>(writePass) *
                                     static_cast<uint64_t>(sectorsToTestCount) -
                                 startSector + current);
        strings.writingSectorMessage(current, endSector, currentSpeed);
        lastProgressTime = now;
    }
}

void ReadWriteTest::showReadProgress(const unsigned long long& current) {
    now = kiv::System::getCurrentTimeMilliseconds();
    if (now - lastProgressTime > kProgressIntervalMs) {
        updateProgressPercentage(static_cast<uint64_t>(readPass) *
                                     static_cast<uint64_t>(sectorsToTestCount) -
                                 startSector + current);
        strings.readingSectorMessage(current, endSector);
        lastProgressTime = now;
    }
}

void ReadWriteTest::updateProgressPercentage(const unsigned long long& done) {
    // Fixed by the first report of the process and kept for every later test object.
    static const uint64_t total =
        uint64_t{speedCount} * static_cast<uint64_t>(sectorsToTestCount) * 2;
    static const bool eraseShare = parameters.eraseMediaAfterTest();
    uint64_t step = total == 0 ? 0 : (100 - uint64_t{basePercent}) * done / total;
    if (eraseShare) {
        // Writing and verifying fill a fifth of the rest of the bar, the erase the remainder.
        step = static_cast<uint64_t>(static_cast<double>(step) * 0.2);
    }
    quel5::DiagModule::percentDone(static_cast<unsigned int>(basePercent + step));
}

}  // namespace kivrlibdrive

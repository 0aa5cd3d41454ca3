#include "DestructivePass.h"

#include <cstring>
#include <limits>

#include "SectorBuffer.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Parameters.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {

bool ShouldPreserveData() { return g_bPreserveData->value().valueBool(); }

bool EndsDestructivePass(const quel5::TestResult& result) {
    return result == quel5::TestResult::USERABORTED || result == quel5::TestResult::INTERNALERROR ||
           result == quel5::TestResult::CANNOTRUN;
}

void ReportMaxErrorsExceeded(uint32_t maxErrors, const wchar_t* source, int line) {
    LibDriveStrings::g_errorEventMaxErrorsExceeded->setVariable(L"MaxError",
                                                                quel5::Value(maxErrors));
    quel5::DiagModule::error(LibDriveStrings::g_errorEventMaxErrorsExceeded, source, line);
}

quel5::TestResult RestoreSector(Drive& drive, uint64_t sector, const void* data, uint32_t bytes) {
    return drive.WriteSectors(sector, 1, data, bytes);
}

void ReportUnableToRestore(const quel5::LocalizedString& testName, uint64_t sector,
                           uint64_t endSector, const wchar_t* source, int line) {
    quel5::Event* event = LibDriveStrings::g_WarnEventUnableToRestoreSector;
    event->setVariable(L"TestName", quel5::Value(testName.localizedString()));
    event->setVariable(L"TestSector", quel5::Value(sector));
    event->setVariable(L"EndSector", quel5::Value(endSector));
    quel5::DiagModule::warning(event, source, line);
}

quel5::TestResult WriteBackArea(Drive& drive, const quel5::LocalizedString& testName,
                                uint64_t sector, uint64_t endSector, const void* data,
                                uint32_t bytes, const wchar_t* source, int line) {
    const quel5::TestResult restored = RestoreSector(drive, sector, data, bytes);
    if (restored != quel5::TestResult::PASS && restored != quel5::TestResult::INTERNALERROR) {
        ReportUnableToRestore(testName, sector, endSector, source, line);
    }
    return restored;
}

bool AreaBuffers::Allocate(uint64_t bytes) {
    // A drive transfers at most 32 bits' worth of bytes in one call.
    if (bytes == 0 || bytes > std::numeric_limits<uint32_t>::max()) {
        return false;
    }
    saved_ = AllocateSectorBuffer(bytes);
    written_ = AllocateSectorBuffer(bytes);
    readBack_ = AllocateSectorBuffer(bytes);
    bytes_ = static_cast<uint32_t>(bytes);
    return saved_ && written_ && readBack_;
}

void AreaBuffers::FillWritten(unsigned char fill) { std::memset(written_.get(), fill, bytes_); }

bool AreaBuffers::ReadBackMatches() const {
    return std::memcmp(written_.get(), readBack_.get(), bytes_) == 0;
}

VolumeHold::~VolumeHold() { Release(); }

quel5::TestResult VolumeHold::Take() {
    const quel5::TestResult result = drive_.lock();
    held_ = result == quel5::TestResult::PASS;
    return result;
}

void VolumeHold::Release() {
    if (held_) {
        held_ = false;
        drive_.unLock();
    }
}

}  // namespace kivrlibdrive

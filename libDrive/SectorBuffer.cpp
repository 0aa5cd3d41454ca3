#include "SectorBuffer.h"

#include <limits>
#include <new>

#include "libDrive/LibDriveStrings.h"

namespace kivrlibdrive {

std::unique_ptr<unsigned char[]> AllocateSectorBuffer(uint64_t bytes) {
    if (bytes > std::numeric_limits<uint32_t>::max()) {
        return nullptr;
    }
    return std::unique_ptr<unsigned char[]>(
        new (std::nothrow) unsigned char[static_cast<std::size_t>(bytes)]());
}

quel5::TestResult TakeReadBuffer(Drive& drive, TrayHold& tray, uint32_t sectorsPerRead,
                                 const wchar_t* source, const ReadBufferLines& lines,
                                 ReadBuffer& buffer) {
    buffer.sectorBytes = drive.GetBytesPerSector();
    if (buffer.sectorBytes == 0) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventInvalidBufferSize, source,
                           lines.noSectorSize, quel5::TestResult::INTERNALERROR);
    }
    buffer.data = AllocateSectorBuffer(static_cast<uint64_t>(buffer.sectorBytes) * sectorsPerRead);
    if (buffer.data == nullptr) {
        return AbandonPass(tray, LibDriveStrings::g_WarnEventMemoryAllocationError, source,
                           lines.noBuffer, quel5::TestResult::INTERNALERROR);
    }
    return quel5::TestResult::PASS;
}

}  // namespace kivrlibdrive

// The buffers the hard-drive tests read into. Internal to the library.
#pragma once

#include <cstdint>
#include <memory>

#include "PassRules.h"
#include "libDrive/Drive.h"
#include "quel5/TestResult.h"

namespace kivrlibdrive {

// A zero-filled buffer of `bytes` bytes, or nullptr when it cannot be had: memory is short, or
// `bytes` does not fit the 32-bit size a drive call is given. REQUIRES: bytes > 0.
std::unique_ptr<unsigned char[]> AllocateSectorBuffer(uint64_t bytes);

// The source lines of the warnings a pass gives up with when it cannot have its read buffer.
struct ReadBufferLines {
    int noSectorSize;  // "INVALID_BUFFER_SIZE"
    int noBuffer;      // "MSG_ERROR_ALLOCATING_MEMORY"
};

// What a pass reads into: `data` holds sectors of `sectorBytes` bytes each.
struct ReadBuffer {
    uint32_t sectorBytes = 0;
    std::unique_ptr<unsigned char[]> data;
};

// Fills `buffer` for a pass holding `tray`: the drive's GetBytesPerSector() and a zero-filled
// block of that many bytes times `sectorsPerRead`. PASS when both were had; otherwise the pass is
// abandoned as AbandonPass() does, with the matching warning from `source` at its line in
// `lines`, and the result is INTERNALERROR. REQUIRES: sectorsPerRead > 0.
quel5::TestResult TakeReadBuffer(Drive& drive, TrayHold& tray, uint32_t sectorsPerRead,
                                 const wchar_t* source, const ReadBufferLines& lines,
                                 ReadBuffer& buffer);

}  // namespace kivrlibdrive

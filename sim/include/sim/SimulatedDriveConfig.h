// What a simulated hard drive is made of: its geometry, where its sectors live, what each
// operation costs in time, and the answers it gives to the questions tests ask of a drive.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "quel5/TestResult.h"

namespace sim {

// What a sector nobody wrote reads as (memory backing only; an image file reads zeros past its
// end). The pattern lets a test notice data from the wrong sector: see SectorPattern.h.
enum class UnwrittenContent { LbaPattern, Zeros };

// Time charged to the installed os clock (os::sleepMilliseconds) per operation. Reads and
// verifies cost perReadMs, writes perWriteMs, and each sector transferred perSectorMicroseconds
// more; fractions of a millisecond are carried over to the next operation. All 0 by default, so
// a drive under the real clock never sleeps unless asked to.
// Sectors whose reads take longer, as a worn area of a disk does: a read or verify touching
// any of them costs `ms` more (the most of the spans it touches).
struct SlowSpan {
    uint64_t first = 0;
    uint64_t count = 0;
    uint32_t ms = 0;
    bool operator==(const SlowSpan&) const = default;
};

struct TimeCost {
    uint32_t perReadMs = 0;
    uint32_t perWriteMs = 0;
    uint32_t perSectorMicroseconds = 0;
    std::vector<SlowSpan> slowReads;
};

// Answers to the drive's yes/no questions and results; tests may change them between calls
// through SimulatedDrive::switches().
struct DriveSwitches {
    // GetHandle() answers invalidDriveHandle().
    bool invalidHandle = false;
    // NeedsMediaCheck() and CheckMedia().
    bool needsMediaCheck = false;
    quel5::TestResult checkMediaResult = quel5::TestResult::PASS;
    // lock() raises "DeviceBusy" through the Drive base and answers DEVICEBUSY, touching no
    // device.
    bool lockFails = false;
    // lock() and unLock() take and release the real volume locks of the device's OS locator
    // (an image file, say) through the Drive base. Off: locking always succeeds.
    bool lockThroughBase = false;
    // IsRerunAllowed() and ConfirmRerun().
    bool rerunAllowed = false;
    bool confirmRerun = false;
    // GetPASSResult().
    quel5::TestResult passResult = quel5::TestResult::PASS;
    bool provideEstimatedTime = false;
    bool checkForQualifiedMedia = false;
    bool mediaQualified = true;
    // IsWriteProtected(); every write answers FAIL.
    bool writeProtected = false;
    // GetTotalSectors() and GetBytesPerSector() throw kiv::Exception.
    bool geometryThrows = false;
};

struct SimulatedDriveConfig {
    // Capacity in sectors. 0 with an image file: the file's size in whole sectors.
    uint64_t totalSectors = 0;
    uint32_t bytesPerSector = 512;
    uint32_t sectorsPerTrack = 63;
    uint32_t optimalReadAmount = 0;
    // Empty: sectors live in memory, only those written with content other than the unwritten
    // content are kept, so a drive of any size costs nothing until written. Otherwise the
    // sectors live in this file (created when missing, grown by writes).
    std::filesystem::path imagePath;
    UnwrittenContent unwritten = UnwrittenContent::LbaPattern;
    TimeCost cost;
    DriveSwitches switches;
    // Off for long runs over big ranges where the record would grow large.
    bool recordOperations = true;
};

}  // namespace sim

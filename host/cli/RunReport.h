// The facts drivediag reports around a test: the device header before it and the summary
// after it, whatever form (text, JSON, metrics, a bad-blocks list) they are written in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/TestTable.h"
#include "drives/OperationRecord.h"
#include "drives/ReadTimes.h"
#include "libDrive/Drive.h"

namespace host {

struct DeviceHeader {
    std::string device;  // as given on the command line
    std::string kind;    // "block device", "image file", "simulated drive", "test medium"
    std::string model;   // "" when the system does not say
    std::string serial;  // "" when the system does not say
    uint64_t totalSectors = 0;
    uint32_t sectorBytes = 0;          // logical
    uint32_t physicalSectorBytes = 0;  // 0 when the system does not say
    std::optional<bool> directIo;      // unset where it does not apply
    std::string medium;                // optical: the disc in the drive; "" for other drives
};

// The header of `drive`, opened from `deviceText`.
DeviceHeader describeDevice(kivrlibdrive::Drive& drive, const std::string& deviceText);

struct RunSummary {
    std::string test;
    std::optional<TestedRange> range;           // the last range the test settled on
    std::optional<OperationRecord> operations;  // unset when the drive keeps no record
    const ReadTimes* readTimes = nullptr;       // the drive's; null when it read nothing
    uint64_t compareErrors = 0;                 // miscompares the test raised events for
    uint64_t elapsedMs = 0;
    uint32_t sectorBytes = 0;
    unsigned int percentReached = 0;  // how far the last pass got
    std::string result;               // "PASS", "FAIL", ...
    int exitCode = 0;
    // Optical: each speed the test set, in kB/s and in order (0xFFFF: the drive's maximum).
    std::vector<unsigned int> speeds;

    // Bytes read and written per second over the run; 0 when no time passed.
    double bytesPerSecond() const;
    // Failed reads and writes, by operation.
    uint64_t failedOperations() const;
    // The PASS that the test's error rules gave although transfers or compares failed.
    bool passedWithFailures() const;
};

}  // namespace host

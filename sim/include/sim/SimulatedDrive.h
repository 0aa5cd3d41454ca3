// sim::SimulatedDrive: a hard drive made of memory or an image file, for tests and demos.
//
// Reads and writes move bytes like a drive read through the operating system with the
// buffer's length: an operation covers bufferSize / bytesPerSector whole sectors starting at
// `startSector`; `count` is recorded but does not limit the transfer. An operation answers
// FAIL, touching neither the buffer nor the sectors, when the buffer is null or not a whole
// number (at least one) of sectors long, when any covered sector lies past the capacity, or
// when an injected fault says so; INTERNALERROR when a read meets a ReadInternalError sector or
// the image file fails. Every operation is charged its time cost and recorded, whatever it
// answers.
//
// Not thread-safe; one test uses it at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "libDrive/Drive.h"
#include "sim/SectorFaults.h"
#include "sim/SectorStore.h"
#include "sim/SimulatedDriveConfig.h"

namespace sim {

struct Operation {
    enum class Kind { Read, Write, Verify };
    Kind kind;
    uint64_t startSector;
    uint32_t sectors;         // sectors the operation covered
    uint32_t requestedCount;  // the `count` argument as given
    quel5::TestResult result;
    bool operator==(const Operation&) const = default;
};

// How often the drive was asked things that leave no trace in the sectors.
struct DriveCounters {
    unsigned lockTray = 0;
    unsigned unlockTray = 0;
    unsigned prepareRead = 0;
    unsigned lock = 0;
    unsigned unLock = 0;
    unsigned checkMedia = 0;
    bool lastCheckMediaFlag = false;
    unsigned isRerunAllowed = 0;
    unsigned confirmRerun = 0;
    unsigned promptUserOnUnqualifiedMedia = 0;
    unsigned flushCache = 0;
};

class SimulatedDrive : public kivrlibdrive::Drive {
public:
    // `diagDevice` must outlive the drive. Throws kiv::Exception when the image file of `config`
    // cannot be opened.
    SimulatedDrive(const quel5::DiagDevice& diagDevice, SimulatedDriveConfig config);
    ~SimulatedDrive() override;

    quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count, void* buffer,
                                  unsigned int bufferSize) override;
    quel5::TestResult WriteSectors(const uint64_t& startSector, unsigned int count,
                                   const void* buffer, unsigned int bufferSize) override;
    quel5::TestResult VerifySectors(const uint64_t& startSector, unsigned int count) override;
    quel5::TestResult FlushCache() override;
    uint32_t GetSectorsPerTrack() override;
    uint32_t GetBytesPerSector() override;
    uint32_t GetOptimalReadAmount() const override;
    uint64_t GetTotalSectors() override;
    quel5::TestResult PrepareRead() override;
    quel5::TestResult OpenDevice() override;
    quel5::TestResult CloseDevice() override;
    bool IsWriteProtected() override;
    void* GetHandle() override;
    quel5::TestResult lock() override;
    quel5::TestResult unLock() override;
    bool NeedsMediaCheck() override;
    quel5::TestResult CheckMedia(bool flag) override;
    bool CheckForQualifiedMedia() override;
    bool MediaQualified() override;
    bool IsRerunAllowed() override;
    bool ConfirmRerun() override;
    quel5::TestResult PromptUserOnUnqualifiedMedia() override;
    quel5::TestResult GetPASSResult() override;
    void LockTray() override;
    void UnlockTray() override;
    bool provideEstimatedTime() override;

    // Test side.
    void injectFault(uint64_t sector, SectorFault fault) { faults_.add(sector, fault); }
    // Gives `fault` to `count` sectors from `first`; kept as one span whatever its length.
    void injectFaultSpan(uint64_t first, uint64_t count, SectorFault fault) {
        faults_.addSpan(first, count, fault);
    }
    const SectorFaults& faults() const { return faults_; }
    void clearFaults() { faults_.clear(); }
    DriveSwitches& switches() { return config_.switches; }
    const DriveCounters& counters() const { return counters_; }
    const std::vector<Operation>& operations() const { return operations_; }
    void clearOperations() { operations_.clear(); }
    // Milliseconds charged to the clock so far.
    uint64_t chargedMilliseconds() const { return chargedMs_; }
    // Sectors held in memory (0 with an image file).
    std::size_t storedSectors() const;
    const _SCSI_PATH& scsiAddress() const { return scsiPath; }

private:
    // Sectors covered by a buffer of `bufferSize` bytes; 0 when that is not a usable length.
    uint32_t sectorsIn(const void* buffer, unsigned int bufferSize) const;
    bool withinCapacity(uint64_t first, uint64_t count) const;
    // What a read of `count` sectors from `first` costs: perReadMs and the slowest span it
    // touches.
    uint32_t readCostMs(uint64_t first, uint64_t count) const;
    void charge(uint32_t commandMs, uint64_t sectors);
    quel5::TestResult finish(Operation::Kind kind, uint64_t start, uint32_t sectors,
                             unsigned int requested, quel5::TestResult result);

    SimulatedDriveConfig config_;
    std::unique_ptr<SectorStore> store_;
    MemorySectorStore* memory_ = nullptr;  // store_ when it is the memory store
    SectorFaults faults_;
    DriveCounters counters_;
    std::vector<Operation> operations_;
    uint64_t pendingMicroseconds_ = 0;
    uint64_t chargedMs_ = 0;
    bool open_ = true;
};

}  // namespace sim

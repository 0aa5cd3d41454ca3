// host::RecordingDrive<Base>: a concrete drive that keeps an OperationRecord of every read,
// verify and write the test asks of it, as the drive itself answered them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "drives/OperationRecord.h"
#include "drives/ReadTimes.h"
#include "libDrive/Drive.h"
#include "os/Clock.h"

namespace host {

// What any drive drivediag runs a test on can tell about the run.
class RecordsOperations {
public:
    virtual ~RecordsOperations() = default;
    virtual const OperationRecord& operations() const = 0;
    // How long its reads took; null before the first read.
    virtual const ReadTimes* readTimes() const = 0;
};

template <typename Base>
class RecordingDrive : public Base, public RecordsOperations {
public:
    using Base::Base;

    quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count, void* buffer,
                                  unsigned int bufferSize) override {
        const uint64_t started = os::clock().monotonicMilliseconds();
        const quel5::TestResult result = Base::ReadSectors(startSector, count, buffer, bufferSize);
        recordRead(startSector, moved(count, bufferSize), started, result);
        return result;
    }
    quel5::TestResult WriteSectors(const uint64_t& startSector, unsigned int count,
                                   const void* buffer, unsigned int bufferSize) override {
        const quel5::TestResult result = Base::WriteSectors(startSector, count, buffer, bufferSize);
        record_.add(OperationRecord::Kind::Write, startSector, moved(count, bufferSize),
                    result == quel5::TestResult::PASS);
        return result;
    }
    quel5::TestResult VerifySectors(const uint64_t& startSector, unsigned int count) override {
        const uint64_t started = os::clock().monotonicMilliseconds();
        const quel5::TestResult result = Base::VerifySectors(startSector, count);
        recordRead(startSector, count, started, result);
        return result;
    }

    const OperationRecord& operations() const override { return record_; }
    const ReadTimes* readTimes() const override { return times_ ? &*times_ : nullptr; }

private:
    void recordRead(uint64_t first, uint64_t sectors, uint64_t startedMs,
                    quel5::TestResult result) {
        const bool succeeded = result == quel5::TestResult::PASS;
        record_.add(OperationRecord::Kind::Read, first, sectors, succeeded);
        // A drive that reads ahead knows what each read cost the device; others are timed
        // around the call.
        uint64_t ms = os::clock().monotonicMilliseconds() - startedMs;
        if constexpr (requires(const Base& drive) { drive.lastReadMilliseconds(); })
            ms = this->lastReadMilliseconds();
        if (!times_) times_.emplace(this->GetTotalSectors());
        times_->add(first, sectors, ms, !succeeded);
    }

    // Drives move the whole buffer they are given, even when asked for fewer sectors.
    uint64_t moved(unsigned int count, unsigned int bufferSize) {
        const uint32_t sectorBytes = this->GetBytesPerSector();
        return sectorBytes == 0 ? count : std::max<uint64_t>(count, bufferSize / sectorBytes);
    }

    OperationRecord record_;
    std::optional<ReadTimes> times_;
};

}  // namespace host

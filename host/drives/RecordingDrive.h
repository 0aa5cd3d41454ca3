// host::RecordingDrive<Base>: a concrete drive that keeps an OperationRecord of every read,
// verify and write the test asks of it, as the drive itself answered them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "drives/OperationRecord.h"
#include "libDrive/Drive.h"

namespace host {

// What any drive drivediag runs a test on can tell about the run.
class RecordsOperations {
public:
    virtual ~RecordsOperations() = default;
    virtual const OperationRecord& operations() const = 0;
};

template <typename Base>
class RecordingDrive : public Base, public RecordsOperations {
public:
    using Base::Base;

    quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count, void* buffer,
                                  unsigned int bufferSize) override {
        const quel5::TestResult result = Base::ReadSectors(startSector, count, buffer, bufferSize);
        record_.add(OperationRecord::Kind::Read, startSector, moved(count, bufferSize),
                    result == quel5::TestResult::PASS);
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
        const quel5::TestResult result = Base::VerifySectors(startSector, count);
        record_.add(OperationRecord::Kind::Read, startSector, count,
                    result == quel5::TestResult::PASS);
        return result;
    }

    const OperationRecord& operations() const override { return record_; }

private:
    // Drives move the whole buffer they are given, even when asked for fewer sectors.
    uint64_t moved(unsigned int count, unsigned int bufferSize) {
        const uint32_t sectorBytes = this->GetBytesPerSector();
        return sectorBytes == 0 ? count : std::max<uint64_t>(count, bufferSize / sectorBytes);
    }

    OperationRecord record_;
};

}  // namespace host

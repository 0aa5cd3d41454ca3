// blockdrivetest::FakeDevice: an in-memory device for read-ahead tests. Its bytes are
// imageBytes() until overwritten; reads covering a failing byte fail; reads past its size come
// back short. Reads through reader() (the workers') can be held at a gate, and every read is
// counted, so that a test sees what was read, by whom, and what is still in flight.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "drives/ReadAhead.h"

namespace blockdrivetest {

class FakeDevice {
public:
    explicit FakeDevice(uint64_t size) : size_(size) {}

    // Reads covering byte `offset` fail with `code`.
    void failAt(uint64_t offset, uint32_t code);
    void overwrite(uint64_t offset, size_t bytes, uint8_t value);
    // What a read of the range should give: the bytes and the outcome.
    os::IoResult expected(uint64_t offset, size_t bytes, std::vector<uint8_t>* data) const;

    // Reads as the drive's user would, straight away.
    os::IoResult read(uint64_t offset, unsigned char* buffer, size_t bytes);
    // Reads as read-ahead's workers do: counted apart, and held while the gate is closed.
    host::ReadAhead::Reader reader();

    void closeGate();
    void openGate();
    // Blocks until `count` worker reads wait at the closed gate.
    void waitForHeld(size_t count);
    // Blocks until `count` worker reads have returned.
    void waitForWorkerReads(size_t count);

    size_t workerReads() const;
    size_t directReads() const;
    size_t inFlight() const;
    // The highest byte offset any read reached, plus one.
    uint64_t highestEnd() const;

private:
    os::IoResult transfer(uint64_t offset, unsigned char* buffer, size_t bytes);

    uint64_t size_;
    std::map<uint64_t, uint32_t> failures_;
    std::map<uint64_t, uint8_t> overwritten_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool gateOpen_ = true;
    size_t held_ = 0;
    size_t inFlight_ = 0;
    size_t workerReads_ = 0;
    size_t directReads_ = 0;
    uint64_t highestEnd_ = 0;
};

}  // namespace blockdrivetest

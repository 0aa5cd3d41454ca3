#include "blockdrive/FakeDevice.h"

#include <algorithm>

#include "support/TempFile.h"

namespace blockdrivetest {

void FakeDevice::failAt(uint64_t offset, uint32_t code) {
    const std::lock_guard<std::mutex> lock(mutex_);
    failures_[offset] = code;
}

void FakeDevice::overwrite(uint64_t offset, size_t bytes, uint8_t value) {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (size_t i = 0; i < bytes; ++i) {
        overwritten_[offset + i] = value;
    }
}

os::IoResult FakeDevice::expected(uint64_t offset, size_t bytes, std::vector<uint8_t>* data) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto failure = failures_.lower_bound(offset);
    if (failure != failures_.end() && failure->first < offset + bytes) {
        data->clear();
        return os::IoResult{0, os::Error{failure->second, "injected"}};
    }
    const size_t available = offset >= size_ ? 0 : std::min<uint64_t>(bytes, size_ - offset);
    *data = testsupport::imageBytes(offset, available);
    for (size_t i = 0; i < available; ++i) {
        if (const auto found = overwritten_.find(offset + i); found != overwritten_.end()) {
            (*data)[i] = found->second;
        }
    }
    return os::IoResult{available, {}};
}

os::IoResult FakeDevice::transfer(uint64_t offset, unsigned char* buffer, size_t bytes) {
    std::vector<uint8_t> data;
    const os::IoResult result = expected(offset, bytes, &data);
    std::copy(data.begin(), data.end(), buffer);
    const std::lock_guard<std::mutex> lock(mutex_);
    highestEnd_ = std::max(highestEnd_, offset + bytes);
    return result;
}

os::IoResult FakeDevice::read(uint64_t offset, unsigned char* buffer, size_t bytes) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++directReads_;
    }
    return transfer(offset, buffer, bytes);
}

host::ReadAhead::Reader FakeDevice::reader() {
    return [this](uint64_t offset, unsigned char* buffer, size_t bytes) {
        {
            std::unique_lock<std::mutex> lock(mutex_);
            ++inFlight_;
            ++held_;
            changed_.notify_all();
            changed_.wait(lock, [this] { return gateOpen_; });
            --held_;
        }
        const os::IoResult result = transfer(offset, buffer, bytes);
        const std::lock_guard<std::mutex> lock(mutex_);
        --inFlight_;
        ++workerReads_;
        changed_.notify_all();
        return result;
    };
}

void FakeDevice::closeGate() {
    const std::lock_guard<std::mutex> lock(mutex_);
    gateOpen_ = false;
}

void FakeDevice::openGate() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        gateOpen_ = true;
    }
    changed_.notify_all();
}

void FakeDevice::waitForHeld(size_t count) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return held_ >= count; });
}

void FakeDevice::waitForWorkerReads(size_t count) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return workerReads_ >= count; });
}

size_t FakeDevice::workerReads() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return workerReads_;
}

size_t FakeDevice::directReads() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return directReads_;
}

size_t FakeDevice::inFlight() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return inFlight_;
}

uint64_t FakeDevice::highestEnd() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return highestEnd_;
}

}  // namespace blockdrivetest

#include "sim/SimulatedDrive.h"

#include <algorithm>

#include <utility>

#include "kiv/Exception.h"
#include "os/Clock.h"

namespace sim {

using quel5::TestResult;

SimulatedDrive::SimulatedDrive(const quel5::DiagDevice& diagDevice, SimulatedDriveConfig config)
    : Drive(diagDevice), config_(std::move(config)) {
    if (config_.imagePath.empty()) {
        auto memory =
            std::make_unique<MemorySectorStore>(config_.bytesPerSector, config_.unwritten);
        memory_ = memory.get();
        store_ = std::move(memory);
        return;
    }
    auto image = std::make_unique<ImageFileSectorStore>(config_.imagePath, config_.bytesPerSector);
    if (config_.totalSectors == 0 && config_.bytesPerSector != 0) {
        config_.totalSectors = image->sizeInBytes() / config_.bytesPerSector;
    }
    store_ = std::move(image);
}

SimulatedDrive::~SimulatedDrive() = default;

uint32_t SimulatedDrive::sectorsIn(const void* buffer, unsigned int bufferSize) const {
    const uint32_t size = config_.bytesPerSector;
    if (buffer == nullptr || size == 0 || bufferSize % size != 0) {
        return 0;
    }
    return bufferSize / size;
}

bool SimulatedDrive::withinCapacity(uint64_t first, uint64_t count) const {
    return first < config_.totalSectors && count <= config_.totalSectors - first;
}

uint32_t SimulatedDrive::readCostMs(uint64_t first, uint64_t count) const {
    uint32_t slowest = 0;
    for (const SlowSpan& span : config_.cost.slowReads) {
        if (first < span.first + span.count && span.first < first + count)
            slowest = std::max(slowest, span.ms);
    }
    return config_.cost.perReadMs + slowest;
}

void SimulatedDrive::charge(uint32_t commandMs, uint64_t sectors) {
    pendingMicroseconds_ +=
        uint64_t{commandMs} * 1000 + sectors * config_.cost.perSectorMicroseconds;
    const uint64_t ms = pendingMicroseconds_ / 1000;
    pendingMicroseconds_ %= 1000;
    if (ms != 0) {
        chargedMs_ += ms;
        os::sleepMilliseconds(static_cast<uint32_t>(ms));
    }
}

TestResult SimulatedDrive::finish(Operation::Kind kind, uint64_t start, uint32_t sectors,
                                  unsigned int requested, TestResult result) {
    if (config_.recordOperations) {
        operations_.push_back({kind, start, sectors, requested, result});
    }
    return result;
}

TestResult SimulatedDrive::ReadSectors(const uint64_t& startSector, unsigned int count,
                                       void* buffer, unsigned int bufferSize) {
    const uint32_t sectors = sectorsIn(buffer, bufferSize);
    charge(readCostMs(startSector, sectors), sectors);
    const auto done = [&](TestResult result) {
        return finish(Operation::Kind::Read, startSector, sectors, count, result);
    };
    if (sectors == 0 || !withinCapacity(startSector, sectors)) {
        return done(TestResult::FAIL);
    }
    if (const auto failure = faults_.readFailure(startSector, sectors)) {
        return done(*failure);
    }
    auto* out = static_cast<uint8_t*>(buffer);
    const uint32_t size = config_.bytesPerSector;
    for (uint32_t i = 0; i < sectors; ++i) {
        const uint64_t lba = startSector + i;
        if (!store_->readSector(lba, out + uint64_t{i} * size)) {
            return done(TestResult::INTERNALERROR);
        }
        if (faults_.has(lba, SectorFault::Flaky)) {
            faults_.applyFlakyRead(lba, out + uint64_t{i} * size, size);
        }
    }
    return done(TestResult::PASS);
}

TestResult SimulatedDrive::WriteSectors(const uint64_t& startSector, unsigned int count,
                                        const void* buffer, unsigned int bufferSize) {
    const uint32_t sectors = sectorsIn(buffer, bufferSize);
    charge(config_.cost.perWriteMs, sectors);
    const auto done = [&](TestResult result) {
        return finish(Operation::Kind::Write, startSector, sectors, count, result);
    };
    if (sectors == 0 || !withinCapacity(startSector, sectors) || config_.switches.writeProtected ||
        faults_.writeFails(startSector, sectors)) {
        return done(TestResult::FAIL);
    }
    const auto* in = static_cast<const uint8_t*>(buffer);
    const uint32_t size = config_.bytesPerSector;
    for (uint32_t i = 0; i < sectors; ++i) {
        const uint64_t lba = startSector + i;
        if (faults_.has(lba, SectorFault::Forgetful)) {
            continue;
        }
        if (!store_->writeSector(lba, in + uint64_t{i} * size)) {
            return done(TestResult::INTERNALERROR);
        }
    }
    return done(TestResult::PASS);
}

TestResult SimulatedDrive::VerifySectors(const uint64_t& startSector, unsigned int count) {
    charge(readCostMs(startSector, count), count);
    TestResult result = TestResult::PASS;
    if (count == 0 || !withinCapacity(startSector, count)) {
        result = TestResult::FAIL;
    } else if (const auto failure = faults_.readFailure(startSector, count)) {
        result = *failure;
    }
    return finish(Operation::Kind::Verify, startSector, count, count, result);
}

TestResult SimulatedDrive::FlushCache() {
    ++counters_.flushCache;
    return TestResult::PASS;
}

uint32_t SimulatedDrive::GetSectorsPerTrack() { return config_.sectorsPerTrack; }

uint32_t SimulatedDrive::GetBytesPerSector() {
    if (config_.switches.geometryThrows) {
        throw kiv::Exception(L"simulated geometry failure");
    }
    return config_.bytesPerSector;
}

uint32_t SimulatedDrive::GetOptimalReadAmount() const { return config_.optimalReadAmount; }

uint64_t SimulatedDrive::GetTotalSectors() {
    if (config_.switches.geometryThrows) {
        throw kiv::Exception(L"simulated geometry failure");
    }
    return config_.totalSectors;
}

TestResult SimulatedDrive::PrepareRead() {
    ++counters_.prepareRead;
    return TestResult::PASS;
}

TestResult SimulatedDrive::OpenDevice() {
    open_ = true;
    return TestResult::PASS;
}

TestResult SimulatedDrive::CloseDevice() {
    open_ = false;
    return TestResult::PASS;
}

bool SimulatedDrive::IsWriteProtected() { return config_.switches.writeProtected; }

void* SimulatedDrive::GetHandle() {
    if (!open_ || config_.switches.invalidHandle) {
        return kivrlibdrive::invalidDriveHandle();
    }
    return this;
}

TestResult SimulatedDrive::lock() {
    ++counters_.lock;
    if (config_.switches.lockFails) {
        return ReportDeviceBusy();
    }
    return config_.switches.lockThroughBase ? Drive::lock() : TestResult::PASS;
}

TestResult SimulatedDrive::unLock() {
    ++counters_.unLock;
    return config_.switches.lockThroughBase ? Drive::unLock() : TestResult::PASS;
}

bool SimulatedDrive::NeedsMediaCheck() { return config_.switches.needsMediaCheck; }

TestResult SimulatedDrive::CheckMedia(bool flag) {
    ++counters_.checkMedia;
    counters_.lastCheckMediaFlag = flag;
    return config_.switches.checkMediaResult;
}

bool SimulatedDrive::CheckForQualifiedMedia() { return config_.switches.checkForQualifiedMedia; }

bool SimulatedDrive::MediaQualified() { return config_.switches.mediaQualified; }

bool SimulatedDrive::IsRerunAllowed() {
    ++counters_.isRerunAllowed;
    return config_.switches.rerunAllowed;
}

bool SimulatedDrive::ConfirmRerun() {
    ++counters_.confirmRerun;
    return config_.switches.confirmRerun;
}

TestResult SimulatedDrive::PromptUserOnUnqualifiedMedia() {
    ++counters_.promptUserOnUnqualifiedMedia;
    return Drive::PromptUserOnUnqualifiedMedia();
}

TestResult SimulatedDrive::GetPASSResult() { return config_.switches.passResult; }

void SimulatedDrive::LockTray() { ++counters_.lockTray; }

void SimulatedDrive::UnlockTray() { ++counters_.unlockTray; }

bool SimulatedDrive::provideEstimatedTime() { return config_.switches.provideEstimatedTime; }

std::size_t SimulatedDrive::storedSectors() const {
    return memory_ != nullptr ? memory_->storedSectors() : 0;
}

}  // namespace sim

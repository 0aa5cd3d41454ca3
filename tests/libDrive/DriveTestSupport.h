// What the tests of the range, the test frame and the linear seek test share: a fixture with a
// recording host, a virtual clock and a memory log, and a simulated drive that also writes down
// the order in which a test calls it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kiv/Exception.h"
#include "kiv/Log.h"
#include "quel5/Registry.h"
#include "sim/SimulatedDrive.h"
#include "support/RecordingHost.h"
#include "support/ScopedVirtualClock.h"

namespace drivetests {

// Sets a parameter from its text as a host would; fails the test when it is refused.
inline void setParameter(const char* key, const char* text) {
    kiv::String error;
    ASSERT_TRUE(quel5::Registry::instance().setParameter(kiv::String::fromUtf8(key),
                                                         kiv::String::fromUtf8(text), &error))
        << key << "=" << text << ": " << error.toUtf8();
}

using Parameters = std::vector<std::pair<const char*, const char*>>;

// Installs a recording host (every parameter cleared), a virtual clock and a memory log that
// takes every priority, and undoes all three afterwards.
class DriveTestFixture : public ::testing::Test {
protected:
    DriveTestFixture() : installedHost_(host) {
        kiv::LogFactory::setPriority(1);
        kiv::LogFactory::addSink(std::make_unique<kiv::MemorySink>(log_));
    }
    ~DriveTestFixture() override {
        kiv::LogFactory::removeAllSinks();
        kiv::LogFactory::setPriority(4);
    }

    static void set(const char* key, const char* text) { setParameter(key, text); }
    // Forgets every parameter, report and log line, then sets `parameters`.
    void setAll(const Parameters& parameters = {}) {
        quel5::Registry::instance().clearAllParameters();
        host.clear();
        clearLog();
        for (const auto& [key, text] : parameters) set(key, text);
    }

    // Messages written to `logger` at `priority`, in order.
    std::vector<std::string> logged(const char* logger, int priority) const {
        std::vector<std::string> lines;
        for (const kiv::LogRecord& record : log_.records()) {
            if (record.logger.toUtf8() == logger && record.priority == priority) {
                lines.push_back(record.message.toUtf8());
            }
        }
        return lines;
    }
    bool wasLogged(const char* logger, int priority, const std::string& message) const {
        for (const std::string& line : logged(logger, priority)) {
            if (line == message) return true;
        }
        return false;
    }
    void clearLog() { log_.clear(); }
    // Every event as "KEY:line" when raised from `source`, else as "KEY@source".
    std::vector<std::string> eventLines(const std::string& source) const {
        std::vector<std::string> lines;
        for (const testsupport::EventReport& event : host.events()) {
            lines.push_back(event.source == source ? event.key + ":" + std::to_string(event.line)
                                                   : event.key + "@" + event.source);
        }
        return lines;
    }

    uint64_t elapsedMs() { return clock_.elapsedMilliseconds(); }

    testsupport::RecordingHost host;

private:
    testsupport::ScopedVirtualClock clock_;
    testsupport::ScopedHost installedHost_;
    kiv::MemorySink log_;
};

// A simulated drive that records the calls a test makes, in order, as short words: "lock",
// "unlock", "media", "prepare", "read <sector>", "rerun?", "confirm?", "pass?". It can also throw
// from a read and heal its faults when a re-run is confirmed.
class CallRecordingDrive : public sim::SimulatedDrive {
public:
    CallRecordingDrive(const quel5::DiagDevice& diagDevice, sim::SimulatedDriveConfig config)
        : sim::SimulatedDrive(diagDevice, std::move(config)) {}

    std::vector<std::string> calls;
    std::optional<uint64_t> throwOnReadOf;
    bool healOnConfirmedRerun = false;

    quel5::TestResult ReadSectors(const uint64_t& startSector, unsigned int count, void* buffer,
                                  unsigned int bufferSize) override {
        calls.push_back("read " + std::to_string(startSector));
        if (throwOnReadOf == startSector) throw kiv::Exception(L"the drive went away");
        return sim::SimulatedDrive::ReadSectors(startSector, count, buffer, bufferSize);
    }
    quel5::TestResult PrepareRead() override {
        calls.push_back("prepare");
        return sim::SimulatedDrive::PrepareRead();
    }
    void LockTray() override {
        calls.push_back("lock");
        sim::SimulatedDrive::LockTray();
    }
    void UnlockTray() override {
        calls.push_back("unlock");
        sim::SimulatedDrive::UnlockTray();
    }
    quel5::TestResult CheckMedia(bool flag) override {
        calls.push_back("media");
        return sim::SimulatedDrive::CheckMedia(flag);
    }
    bool IsRerunAllowed() override {
        calls.push_back("rerun?");
        return sim::SimulatedDrive::IsRerunAllowed();
    }
    bool ConfirmRerun() override {
        calls.push_back("confirm?");
        const bool confirmed = sim::SimulatedDrive::ConfirmRerun();
        if (confirmed && healOnConfirmedRerun) clearFaults();
        return confirmed;
    }
    quel5::TestResult GetPASSResult() override {
        calls.push_back("pass?");
        return sim::SimulatedDrive::GetPASSResult();
    }

    // The sectors read, in order.
    std::vector<uint64_t> readSectors() const {
        std::vector<uint64_t> sectors;
        for (const sim::Operation& operation : operations())
            sectors.push_back(operation.startSector);
        return sectors;
    }
};

// A simulated drive of `totalSectors` sectors of `bytesPerSector` bytes whose reads cost
// `readMs` milliseconds each.
inline sim::SimulatedDriveConfig driveOf(uint64_t totalSectors, uint32_t bytesPerSector = 512,
                                         uint32_t readMs = 0) {
    sim::SimulatedDriveConfig config;
    config.totalSectors = totalSectors;
    config.bytesPerSector = bytesPerSector;
    config.cost.perReadMs = readMs;
    return config;
}

// `first`, `first + step`, ... `count` sectors.
inline std::vector<uint64_t> stepsFrom(uint64_t first, uint64_t step, uint64_t count) {
    std::vector<uint64_t> sectors;
    for (uint64_t i = 0; i < count; ++i) sectors.push_back(first + i * step);
    return sectors;
}

}  // namespace drivetests

// The optical drive over a registered emulated writer, on a virtual clock, with a recording host
// and a memory log.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kiv/Log.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "quel5/DiagDevice.h"
#include "sim/mmc/EmulatedWriter.h"
#include "support/RecordingHost.h"
#include "support/ScopedVirtualClock.h"

namespace optest {

using sim::mmc::MediaKind;

inline constexpr const char* kDevice = "\\\\.\\SimCdRom5";
inline constexpr const char* kLogger = "libDrive.Windows.WindowsOpticalDrive";
inline constexpr const char* kSource = "libDrive/windows/WindowsOpticalDrive";

// Opens the protected part of the drive to the tests, as a host's subclass would.
class HostDrive : public kivrlibdrive::WindowsOpticalDrive {
public:
    using WindowsOpticalDrive::getRealTimeStreamingFeature;
    using WindowsOpticalDrive::handle;
    using WindowsOpticalDrive::readFlag;
    using WindowsOpticalDrive::requiredMediaFound;
    using WindowsOpticalDrive::requiredProfiles;
    using WindowsOpticalDrive::totalSectors;
    using WindowsOpticalDrive::WindowsOpticalDrive;
    using WindowsOpticalDrive::wroteFlag;
    const kivrlibdrive::DiskGeometry& diskGeometry() const { return geometry; }
};

// The message of the `E` that `call` throws; empty when it throws nothing.
template <typename E, typename Call>
std::string thrownMessage(Call call) {
    try {
        call();
    } catch (const E& thrown) {
        return thrown.getMessage().toUtf8();
    }
    return "";
}

// The status of the `E` that `call` throws; none when it throws nothing.
template <typename E, typename Call>
std::optional<unsigned int> thrownStatus(Call call) {
    try {
        call();
    } catch (const E& thrown) {
        return thrown.getStatus();
    }
    return std::nullopt;
}

class OpticalDriveTest : public ::testing::Test {
public:
    OpticalDriveTest();
    ~OpticalDriveTest() override;

    // Inserts a disc of `kind` (a formatted one for the overwritable kinds) and lets it spin up.
    void loadReady(MediaKind kind);
    void loadReady(const sim::mmc::DiscModel& disc);
    // Plants `code` with its usual sense key on commands `opcode`, `times` times (0: for good).
    void fail(uint8_t opcode, uint16_t code, uint32_t times = 0);

    // Command blocks of operation `opcode` the writer received, in order.
    std::vector<std::vector<uint8_t>> commands(uint8_t opcode) const;
    // The drive's log lines at `priority`, in order.
    std::vector<std::string> logged(int priority) const;
    uint64_t elapsedMs() { return clock.elapsedMilliseconds(); }
    void clearLog() { log_.clear(); }

    testsupport::ScopedVirtualClock clock;
    testsupport::RecordingHost host;
    std::shared_ptr<sim::mmc::EmulatedWriter> writer;
    quel5::DiagDevice device{QuelString(kiv::String::fromUtf8(kDevice))};
    std::unique_ptr<HostDrive> drive;

private:
    testsupport::ScopedHost installed_{host};
    kiv::MemorySink log_;
};

}  // namespace optest

// What the tests of the pattern and cache tests share: a simulated drive that also writes down
// its writes (with what they wrote) and the volume locks, and can refuse chosen writes, and a
// fixture that runs the test class on it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "DriveTestSupport.h"

namespace drivetests {

// "ff" when every byte of `data` is 0xFF, and so on; "data" when the bytes differ.
inline std::string fillOf(const void* data, uint32_t bytes) {
    const auto* first = static_cast<const unsigned char*>(data);
    for (uint32_t i = 1; i < bytes; ++i) {
        if (first[i] != first[0]) return "data";
    }
    char text[3];
    std::snprintf(text, sizeof text, "%02x", bytes == 0 ? 0 : first[0]);
    return text;
}

// Records, besides the calls of CallRecordingDrive, "write <sector> <fill>" (fill as fillOf()
// gives it), "volumes" for lock() and "release" for unLock().
class WriteRecordingDrive : public CallRecordingDrive {
public:
    WriteRecordingDrive(const quel5::DiagDevice& diagDevice, sim::SimulatedDriveConfig config)
        : CallRecordingDrive(diagDevice, std::move(config)) {}

    // When set and true for a write, the write answers `refusal` without touching the sectors.
    std::function<bool(uint64_t sector, const std::string& fill)> refuseWrite;
    quel5::TestResult refusal = quel5::TestResult::FAIL;

    quel5::TestResult WriteSectors(const uint64_t& startSector, unsigned int count,
                                   const void* buffer, unsigned int bufferSize) override {
        const std::string fill = fillOf(buffer, bufferSize);
        calls.push_back("write " + std::to_string(startSector) + " " + fill);
        if (refuseWrite && refuseWrite(startSector, fill)) return refusal;
        return sim::SimulatedDrive::WriteSectors(startSector, count, buffer, bufferSize);
    }
    quel5::TestResult lock() override {
        calls.push_back("volumes");
        return sim::SimulatedDrive::lock();
    }
    quel5::TestResult unLock() override {
        calls.push_back("release");
        return sim::SimulatedDrive::unLock();
    }

    // The bytes of `count` sectors from `first` as the drive holds them now.
    std::vector<unsigned char> contents(uint64_t first, uint32_t count) {
        std::vector<unsigned char> bytes(static_cast<std::size_t>(count) * GetBytesPerSector());
        EXPECT_EQ(sim::SimulatedDrive::ReadSectors(first, count, bytes.data(),
                                                   static_cast<unsigned int>(bytes.size())),
                  quel5::TestResult::PASS);
        return bytes;
    }

    // The calls that match `prefix` ("write", "read 5"), in order.
    std::vector<std::string> callsStartingWith(const std::string& prefix) const {
        std::vector<std::string> found;
        for (const std::string& call : calls) {
            if (call.rfind(prefix, 0) == 0) found.push_back(call);
        }
        return found;
    }
};

// The fixture of the tests of the destructive test class `TestClass`, which raises its events
// from `source`.
template <typename TestClass>
class DestructiveFixture : public DriveTestFixture {
protected:
    explicit DestructiveFixture(const char* source) : source_(source) {}

    static quel5::TestResult run(kivrlibdrive::Drive& drive) {
        TestClass test(drive);
        return test.Run();
    }
    using DriveTestFixture::eventLines;
    std::vector<std::string> eventLines() const { return eventLines(source_); }

    quel5::DiagDevice device{L"sim:destructive"};

private:
    std::string source_;
};

}  // namespace drivetests

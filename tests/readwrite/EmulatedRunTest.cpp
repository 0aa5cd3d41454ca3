// Whole runs through the library's drive object against the emulated writer: the drive answers
// its media questions from the disc's profile, as a host's drive class does.
#include <algorithm>
#include <functional>
#include <optional>

#include "ScriptedOptical.h"
#include "os/EmulatedDevice.h"
#include "sim/mmc/DiscModel.h"
#include "sim/mmc/EmulatedWriter.h"

namespace rwtest {
namespace {

using sim::mmc::MediaKind;
using Writer = sim::mmc::EmulatedWriter;

constexpr const char* kWriter = "\\\\.\\SimCdRom7";

class ProfileDrive : public WindowsOpticalDrive {
public:
    using WindowsOpticalDrive::WindowsOpticalDrive;
    bool DvdplusrwDisc() override { return getCurrentMediaType() == MEDIA_DVDPLUSRW; }
    void flushCache() override {
        WindowsOpticalDrive::flushCache();
        if (afterFlush) afterFlush();
    }
    std::function<void()> afterFlush;
    void requireDvdPlusRw() { requiredProfiles = {0x001A}; }
};

class EmulatedRunTest : public ReadWriteFixture {};

sim::mmc::SenseFault senseFault(uint8_t opcode, uint16_t code) {
    sim::mmc::SenseFault fault;
    fault.opcode = opcode;
    fault.times = 0;
    fault.sense = sim::mmc::senseOf(code);
    return fault;
}

TEST_F(EmulatedRunTest, ADvdPlusRwRunEndsAsTheWriterBehaves) {
    const struct {
        const char* name;
        std::optional<MediaKind> disc;  // none: the tray is empty
        std::function<void(Writer&, ProfileDrive&)> fault;
        quel5::TestResult result;
        const char* line;  // the start of a line logged at priority 4
    } cases[] = {
        {"passes", MediaKind::DvdPlusRw, nullptr, quel5::TestResult::PASS, ""},
        {"stale cache", MediaKind::DvdPlusRw,
         [](Writer& w, ProfileDrive& d) {
             d.afterFlush = [&w] { w.holdStaleData(1, std::vector<uint8_t>(2048, 0)); };
         },
         quel5::TestResult::PASS,
         "951 Data in the cache did not match the write buffer at sector 1"},
        {"CRC error", MediaKind::DvdPlusRw,
         [](Writer& w, ProfileDrive&) { w.injectSense(senseFault(0x28, 0x0803)); },
         quel5::TestResult::FAIL, "1372 The Test has failed because of 0x0803"},
        {"no disc", std::nullopt, nullptr, quel5::TestResult::NOMEDIA, "1366  No media present"},
    };
    parameters.eraseNonBlank = true;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto writer = sim::mmc::registerEmulatedWriter(kWriter);
        if (c.disc) {
            sim::mmc::DiscModel disc = sim::mmc::discOf(*c.disc);
            if (c.disc == MediaKind::DvdPlusRw) disc.status = sim::mmc::DiscStatus::Complete;
            writer->insertDisc(disc);
            clock.advance(2000);
        }
        quel5::DiagDevice writerDevice(QuelString(kiv::String::fromUtf8(kWriter)));
        {
            ProfileDrive writerDrive(writerDevice);
            writerDrive.requireDvdPlusRw();
            if (c.fault) c.fault(*writer, writerDrive);
            ReadWriteTest test(writerDrive, parameters, strings);
            EXPECT_EQ(test.Run(), c.result);
        }
        const auto lines = logged(4);
        EXPECT_TRUE(*c.line == 0 || std::any_of(lines.begin(), lines.end(),
                                                [&](const std::string& line) {
                                                    return line.rfind(c.line, 0) == 0;
                                                }))
            << c.line;
        if (c.result == quel5::TestResult::PASS) {
            EXPECT_EQ(writer->mediumSector(3), std::vector<uint8_t>(2048, 0xBD));
        }
        os::unregisterEmulatedDevice(kWriter);
    }
}

}  // namespace
}  // namespace rwtest

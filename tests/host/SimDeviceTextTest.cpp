#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/DriveOpening.h"
#include "cli/SimDeviceText.h"
#include "sim/SimulatedDrive.h"

namespace host {

void PrintTo(const SimDeviceDescription& described, std::ostream* os) {
    *os << described.totalSectors << " sectors of " << described.bytesPerSector << " bytes, bad";
    for (const SectorSpan& span : described.bad) *os << " " << span.first << "+" << span.count;
    *os << ", flaky";
    for (uint64_t sector : described.flaky) *os << " " << sector;
    *os << ", internal";
    for (uint64_t sector : described.internal) *os << " " << sector;
    *os << ", cost " << described.costMs << ", slow";
    for (const sim::SlowSpan& span : described.slow)
        *os << " " << span.first << "+" << span.count << ":" << span.ms;
}

}  // namespace host

namespace {

using host::SectorSpan;
using host::SimDeviceDescription;

SimDeviceDescription described(uint64_t sectors, uint32_t sectorSize = 512) {
    SimDeviceDescription s;
    s.totalSectors = sectors;
    s.bytesPerSector = sectorSize;
    return s;
}

TEST(SimDeviceTextTest, ValidTexts) {
    const auto withBad = [](SimDeviceDescription s, std::vector<SectorSpan> bad) {
        s.bad = std::move(bad);
        return s;
    };
    SimDeviceDescription everything = described(1000, 4096);
    everything.bad = {{10, 1}, {20, 5}};
    everything.flaky = {7, 8};
    everything.internal = {999};
    everything.costMs = 60000;
    everything.slow = {{0, 1000, 1}, {500, 1, 60000}};
    SimDeviceDescription lastSectorBad = described(100);
    lastSectorBad.bad = {{95, 5}};

    const struct {
        const char* text;
        SimDeviceDescription expected;
    } cases[] = {
        {"sim:1GiB", described(2097152)},
        {"sim:1gib", described(2097152)},
        {"sim:1G", described(2097152)},
        {"sim:1GB", described(2097152)},
        {"sim:1MiB", described(2048)},
        {"sim:64K", described(128)},
        {"sim:2TiB", described(4294967296ull)},
        {"sim:1048576", described(2048)},
        {"sim:1048576b", described(2048)},
        // Bytes round down to whole sectors.
        {"sim:1023", described(1)},
        {"sim:1000s", described(1000)},
        {"sim:1MiB,sector=4096", described(256, 4096)},
        {"sim:1s,sector=65536", described(1, 65536)},
        {"sim:1MiB,bad=1000", withBad(described(2048), {{1000, 1}})},
        {"sim:1MiB,bad=1000+5", withBad(described(2048), {{1000, 5}})},
        {"sim:1000s,bad=10,bad=20+5,flaky=7,flaky=8,internal=999,sector=4096,cost=60000,"
         "slow=0+1000:1,slow=500+1:60000",
         everything},
        {"sim:100s,bad=95+5", lastSectorBad},
        // A span may be as long as the limit when the drive holds it.
        {"sim:1000000s,bad=0+1000000", withBad(described(1000000), {{0, 1000000}})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::string error;
        const auto parsed = host::parseSimDeviceText(c.text, &error);
        ASSERT_TRUE(parsed.has_value()) << error;
        EXPECT_EQ(*parsed, c.expected);
    }
}

TEST(SimDeviceTextTest, InvalidTextsSayWhatIsWrong) {
    const struct {
        const char* text;
        const char* errorMentions;
    } cases[] = {
        {"sim:", "is not a size"},
        {"sim:abc", "is not a size"},
        {"sim:1XB", "is not a size"},
        {"sim:-1", "is not a size"},
        {"sim:1.5GiB", "is not a size"},
        {"sim:99999999999999999999", "is not a size"},
        {"sim:16777216TiB", "is not a size"},
        {"sim:0", "at least one sector"},
        {"sim:511", "at least one sector"},
        {"sim:1MiB,", "not an option=value pair"},
        {"sim:1MiB,bad", "not an option=value pair"},
        {"sim:1MiB,speed=3", "unknown option \"speed\""},
        {"sim:1MiB,sector=1000", "power of two"},
        {"sim:1MiB,sector=256", "power of two"},
        {"sim:1MiB,sector=131072", "power of two"},
        {"sim:1MiB,sector=512,sector=512", "sector= is given twice"},
        {"sim:1MiB,cost=60001", "up to 60000"},
        {"sim:1MiB,cost=x", "up to 60000"},
        {"sim:1MiB,cost=1,cost=2", "cost= is given twice"},
        {"sim:1MiB,bad=", "expected LBA or LBA+COUNT"},
        {"sim:1MiB,bad=5+", "expected LBA or LBA+COUNT"},
        {"sim:1MiB,bad=+5", "expected LBA or LBA+COUNT"},
        {"sim:1MiB,bad=5+0", "COUNT must be from 1 to 1000000"},
        {"sim:1MiB,bad=5+1000001", "COUNT must be from 1 to 1000000"},
        // Sector 2048 is the first one past a 1 MiB drive of 512-byte sectors.
        {"sim:1MiB,bad=2048", "sector 2048 lies beyond the drive's 2048 sectors"},
        {"sim:1MiB,bad=2040+9", "sector 2048 lies beyond"},
        {"sim:1MiB,flaky=2048", "sector 2048 lies beyond"},
        {"sim:1MiB,internal=2048", "sector 2048 lies beyond"},
        {"sim:1MiB,sector=4096,bad=256", "sector 256 lies beyond the drive's 256 sectors"},
        {"sim:1MiB,flaky=x", "expected a sector number"},
        {"sim:1MiB,slow=5+10", "expected LBA+COUNT:MS"},
        {"sim:1MiB,slow=5:10", "expected LBA+COUNT:MS"},
        {"sim:1MiB,slow=5+10:", "expected LBA+COUNT:MS"},
        {"sim:1MiB,slow=5+0:10", "COUNT must be at least 1 and MS from 1 to 60000"},
        {"sim:1MiB,slow=5+1:60001", "COUNT must be at least 1 and MS from 1 to 60000"},
        {"sim:1MiB,slow=2000+49:10", "sector 2048 lies beyond"},
        {"simx:1MiB", "sim:SIZE"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::string error;
        EXPECT_FALSE(host::parseSimDeviceText(c.text, &error).has_value());
        EXPECT_NE(error.find(c.errorMentions), std::string::npos) << error;
    }
}

TEST(SimDeviceTextTest, OnlyTheSimPrefixMakesASimulatedDrive) {
    const struct {
        const char* text;
        bool simulated;
    } cases[] = {
        {"sim:1MiB", true}, {"sim:", true},        {"SIM:1MiB", false},
        {"sim", false},     {"/dev/sim:1", false}, {"", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(host::isSimDeviceText(c.text), c.simulated);
    }
}

// Every fault entry costs the drive one stored span, so their number is bounded.
TEST(SimDeviceTextTest, FaultEntriesAreBoundedTogether) {
    const auto text = [](std::size_t bad, std::size_t flaky, std::size_t internal) {
        std::string out = "sim:1TiB";
        for (std::size_t i = 0; i < bad; ++i) out += ",bad=" + std::to_string(i * 10) + "+5";
        for (std::size_t i = 0; i < flaky; ++i) out += ",flaky=" + std::to_string(i);
        for (std::size_t i = 0; i < internal; ++i) out += ",internal=" + std::to_string(i);
        return out;
    };
    const struct {
        std::size_t bad, flaky, internal;
        bool accepted;
    } cases[] = {
        {1024, 0, 0, true},   {1025, 0, 0, false}, {1000, 20, 4, true},
        {1000, 20, 5, false}, {0, 1025, 0, false}, {0, 0, 1025, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.bad) + " bad, " + std::to_string(c.flaky) + " flaky, " +
                     std::to_string(c.internal) + " internal");
        std::string error;
        const auto parsed = host::parseSimDeviceText(text(c.bad, c.flaky, c.internal), &error);
        EXPECT_EQ(parsed.has_value(), c.accepted) << error;
        if (parsed) {
            EXPECT_EQ(parsed->bad.size(), c.bad);
        } else {
            EXPECT_NE(error.find("too many faults: at most 1024"), std::string::npos) << error;
        }
    }
}

// 40 spans of a million sectors once meant 40 million map entries (gigabytes); now each is one
// stored span. How a span answers at its edges is the simulated drive's own test.
TEST(SimDeviceTextTest, MillionSectorSpansOnATebibyteDriveAreStoredAsSpans) {
    std::string text = "sim:1TiB";
    constexpr uint64_t kSpan = 1000000;
    constexpr uint64_t kStride = 50000000;
    for (uint64_t i = 0; i < 40; ++i)
        text += ",bad=" + std::to_string(i * kStride + 7) + "+1000000";
    // Two more that touch and overlap the first one merge into it.
    text += ",bad=1000007+10,bad=3+5";
    const host::OpenResult opened = host::openDrive(text);
    ASSERT_EQ(opened.failure, host::OpenFailure::None) << opened.error;
    auto* drive = dynamic_cast<sim::SimulatedDrive*>(opened.opened.drive.get());
    ASSERT_NE(drive, nullptr);
    EXPECT_EQ(drive->faults().spanCount(sim::SectorFault::ReadFails), 40u);
    std::vector<uint8_t> buffer(512);
    const auto readAt = [&](uint64_t lba) {
        return drive->ReadSectors(lba, 1, buffer.data(), static_cast<unsigned>(buffer.size()));
    };
    EXPECT_EQ(readAt(2), quel5::TestResult::PASS);
    EXPECT_EQ(readAt(3), quel5::TestResult::FAIL);
    EXPECT_EQ(readAt(1000016), quel5::TestResult::FAIL);
    EXPECT_EQ(readAt(1000017), quel5::TestResult::PASS);
    EXPECT_EQ(readAt(39 * kStride + 7 + kSpan - 1), quel5::TestResult::FAIL);
    EXPECT_EQ(readAt(39 * kStride + 7 + kSpan), quel5::TestResult::PASS);
}

}  // namespace

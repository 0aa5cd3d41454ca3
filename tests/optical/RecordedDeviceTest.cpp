// The drive object over answers a real device model gave through a real kernel: a pressed CD,
// a pressed DVD and an empty drive.
#include <memory>

#include "OpticalDriveFixture.h"
#include "libDrive/Exceptions.h"
#include "os/EmulatedDevice.h"
#include "sim/recorded/ReplayDevice.h"

namespace optest {
namespace {

using kivrlibdrive::MediaType;

struct RecordedCase {
    const char* device;
    unsigned long ready;
    MediaType type;
    bool complete;
    bool present;
    const char* geometryError;
    bool dvdIdentified;  // the ADIP refusal is followed by the physical format read
};

TEST_F(OpticalDriveTest, RecordedDevicesDecodeAsTheDiscsTheyHeld) {
    const std::vector<std::string> names = sim::recorded::registerRecordedDevices();
    const RecordedCase cases[] = {
        {"recorded:sr0", 0, kivrlibdrive::MEDIA_CDROM, true, true, nullptr, false},
        {"recorded:sr1", 0, kivrlibdrive::MEDIA_DVDROM, true, true, nullptr, true},
        // The empty drive accepts START, then has no capacity to report.
        {"recorded:sr2", 0x3A00, kivrlibdrive::MEDIA_UNKNOWN, false, false,
         " No media present: No media present so cannot obtain drive geometry", false},
    };
    for (const RecordedCase& c : cases) {
        SCOPED_TRACE(c.device);
        quel5::DiagDevice recorded(QuelString(kiv::String::fromUtf8(c.device)));
        HostDrive replayed(recorded);
        EXPECT_EQ(replayed.makeSureUnitIsReady(), c.ready);
        EXPECT_EQ(replayed.getCurrentMediaType(), c.type);
        EXPECT_EQ(replayed.completeDisc(), c.complete);
        EXPECT_FALSE(replayed.emptyDisc());
        bool present = !c.present;
        EXPECT_TRUE(replayed.isMediaPresentGESN(present));
        EXPECT_EQ(present, c.present);
        EXPECT_EQ(thrownMessage<kiv::Exception>([&] { replayed.getDriveGeometry(); }),
                  c.geometryError ? c.geometryError : "");
        EXPECT_EQ(replayed.getBytesPerSector(), c.geometryError ? 0u : 2048u);
        bool identified = true;
        try {
            replayed.getDiscManufacturerID();
        } catch (const kivrlibdrive::FailedRetrivingADIPInfo&) {
            identified = false;
        }
        EXPECT_EQ(identified, c.dvdIdentified);
        if (c.complete) {
            std::vector<uint8_t> sector(2048);
            replayed.readSectors(16, 1, sector.data(), 2048, false);
        }
        const auto replay = std::dynamic_pointer_cast<sim::recorded::ReplayDevice>(
            os::findEmulatedDevice(c.device));
        ASSERT_NE(replay, nullptr);
        EXPECT_TRUE(replay->unrecorded().empty());
    }
    for (const std::string& name : names) os::unregisterEmulatedDevice(name);
}

}  // namespace
}  // namespace optest

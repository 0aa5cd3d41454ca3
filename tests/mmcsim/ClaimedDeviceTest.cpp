// Commands for a device a drive holds open go through the drive's handle: the SCSI library
// finds it in the table of open devices and opens nothing of its own.
#include <gtest/gtest.h>

#include "WriterFixture.h"
#include "os/Device.h"
#include "os/OpenDevices.h"

namespace mmctest {
namespace {

// A name only the table of open devices knows: a command reaches the writer under it only
// through the registered handle.
constexpr const char* kClaimedName = "\\\\.\\LibdriveClaimedCdRom";

TEST_F(WriterTest, CommandsForAClaimedDeviceUseTheClaimingHandle) {
    loadReady(sim::mmc::discOf(MediaKind::DvdPlusR));
    os::OpenResult claimed = os::openDevice(kDevice, os::kReadWrite | os::kExclusive);
    ASSERT_TRUE(claimed.error.ok()) << claimed.error.message;
    os::NativeHandle handle = claimed.handle.native();
    writer->clearHistory();

    struct Step {
        const char* name;
        bool registered;
        Status expected;
        size_t commandsSeen;  // by the writer, in all
    };
    const Step steps[] = {
        {"before the drive registers its handle", false, kivscsi::kStatusNoSuchDevice, 0},
        {"registered", true, 0, 1},
        {"again through the same handle", true, 0, 2},
        {"after the drive removed its entry", false, kivscsi::kStatusNoSuchDevice, 2},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        if (step.registered) {
            os::registerOpenDevice(kClaimedName, &handle);
        } else {
            os::unregisterOpenDevice(kClaimedName);
        }
        EXPECT_EQ(kivscsi::TestUnitReady(path, kClaimedName), step.expected);
        EXPECT_EQ(writer->history().size(), step.commandsSeen);
    }
    // The claim outlived every command: no transport closed or replaced the drive's handle.
    EXPECT_FALSE(os::openDevice(kDevice, os::kRead | os::kExclusive).error.ok());
    EXPECT_NE(os::emulatedDeviceFor(handle), nullptr);
}

TEST_F(WriterTest, AnEntryWithoutAnOpenHandleIsPassedOver) {
    loadReady(sim::mmc::discOf(MediaKind::DvdPlusR));
    os::NativeHandle closed = os::invalidNativeHandle();
    os::registerOpenDevice(kDevice, &closed);
    EXPECT_EQ(testUnitReady(), 0u) << "reached by its own name as before";
    os::unregisterOpenDevice(kDevice);
}

}  // namespace
}  // namespace mmctest

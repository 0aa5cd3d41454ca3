// On Linux the SG_IO transport of a device a drive holds open uses the drive's descriptor and
// never closes it (closing the last descriptor would let the kernel release a tray lock).
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "os/OpenDevices.h"
#include "scsi/Transport.h"

namespace {

// Not a path anywhere: only the table of open devices knows it.
constexpr const char* kHeldName = "/dev/libdrive-held-by-a-drive";

TEST(BorrowedHandle, TheHoldersDescriptorIsUsedAndLeftOpen) {
    int held = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(held, 0);
    struct Step {
        const char* name;
        bool registered;
        kivscsi::Status expected;
    };
    const Step steps[] = {
        // /dev/null refuses SG_IO: the status says the registered descriptor was asked.
        {"registered", true, kivscsi::kStatusNotScsiDevice},
        {"not registered", false, kivscsi::kStatusNoSuchDevice},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        if (step.registered) {
            os::registerOpenDevice(kHeldName, &held);
        } else {
            os::unregisterOpenDevice(kHeldName);
        }
        kivscsi::OpenResult opened = kivscsi::openTransport(kHeldName);
        EXPECT_EQ(opened.status, step.expected);
        opened.transport.reset();
        EXPECT_NE(::fcntl(held, F_GETFD), -1) << "the holder's descriptor stays open";
    }
    ::close(held);
}

}  // namespace

// errno values of open() and SG_IO as the library's statuses: a transfer the block layer
// refuses is not mistaken for a device that takes no SCSI commands, nor a directory for a
// transport fault.
#include <gtest/gtest.h>

#include <cerrno>

#include "PassThroughErrors.h"

namespace {

using kivscsi::Status;

TEST(PassThroughErrors, ErrnoValues) {
    struct Case {
        int error;
        Status whenOpening;
        Status whenSending;
    };
    const Case cases[] = {
        {ENOENT, kivscsi::kStatusNoSuchDevice, kivscsi::kStatusTransportError},
        {ENODEV, kivscsi::kStatusNoSuchDevice, kivscsi::kStatusDeviceGone},
        {ENXIO, kivscsi::kStatusNoSuchDevice, kivscsi::kStatusDeviceGone},
        {EACCES, kivscsi::kStatusAccessDenied, kivscsi::kStatusAccessDenied},
        {EBUSY, kivscsi::kStatusAccessDenied, kivscsi::kStatusTransportError},
        {EISDIR, kivscsi::kStatusNotScsiDevice, kivscsi::kStatusTransportError},
        {ENOTTY, kivscsi::kStatusTransportError, kivscsi::kStatusNotScsiDevice},
        {EINVAL, kivscsi::kStatusTransportError, kivscsi::kStatusTransferRefused},
        {ENOMEM, kivscsi::kStatusTransportError, kivscsi::kStatusTransferRefused},
        {ETIMEDOUT, kivscsi::kStatusTransportError, kivscsi::kStatusTimedOut},
        {EIO, kivscsi::kStatusTransportError, kivscsi::kStatusTransportError},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.error);
        const auto error = static_cast<uint32_t>(c.error);
        EXPECT_EQ(kivscsi::detail::statusForOpenError(error), c.whenOpening);
        EXPECT_EQ(kivscsi::detail::statusForPassThroughError(error), c.whenSending);
    }
}

}  // namespace

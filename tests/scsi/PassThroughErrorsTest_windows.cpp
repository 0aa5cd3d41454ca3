// Win32 error codes of CreateFileW and the pass-through request as the library's statuses: a
// transfer the port driver refuses is not mistaken for a malformed command or a device that
// takes no SCSI commands.
#include <windows.h>

#include <gtest/gtest.h>

#include "PassThroughErrors.h"

namespace {

using kivscsi::Status;

TEST(PassThroughErrors, Win32Codes) {
    struct Case {
        DWORD error;
        Status whenOpening;
        Status whenSending;
    };
    const Case cases[] = {
        {ERROR_FILE_NOT_FOUND, kivscsi::kStatusNoSuchDevice, kivscsi::kStatusDeviceGone},
        {ERROR_PATH_NOT_FOUND, kivscsi::kStatusNoSuchDevice, kivscsi::kStatusTransportError},
        {ERROR_ACCESS_DENIED, kivscsi::kStatusAccessDenied, kivscsi::kStatusAccessDenied},
        {ERROR_SHARING_VIOLATION, kivscsi::kStatusAccessDenied, kivscsi::kStatusTransportError},
        {ERROR_DIRECTORY, kivscsi::kStatusNotScsiDevice, kivscsi::kStatusTransportError},
        {ERROR_INVALID_FUNCTION, kivscsi::kStatusTransportError, kivscsi::kStatusNotScsiDevice},
        {ERROR_INVALID_PARAMETER, kivscsi::kStatusTransportError, kivscsi::kStatusTransferRefused},
        {ERROR_INVALID_USER_BUFFER, kivscsi::kStatusTransportError,
         kivscsi::kStatusTransferRefused},
        {ERROR_DEVICE_REMOVED, kivscsi::kStatusTransportError, kivscsi::kStatusDeviceGone},
        {ERROR_SEM_TIMEOUT, kivscsi::kStatusTransportError, kivscsi::kStatusTimedOut},
        {ERROR_BUSY, kivscsi::kStatusTransportError, kivscsi::kStatusDeviceBusy},
        {ERROR_GEN_FAILURE, kivscsi::kStatusTransportError, kivscsi::kStatusTransportError},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.error);
        EXPECT_EQ(kivscsi::detail::statusForOpenError(c.error), c.whenOpening);
        EXPECT_EQ(kivscsi::detail::statusForPassThroughError(c.error), c.whenSending);
    }
}

}  // namespace

#include <cerrno>

#include "PassThroughErrors.h"

namespace kivscsi::detail {

Status statusForOpenError(uint32_t error) {
    switch (error) {
        case ENOENT:
        case ENXIO:
        case ENODEV:
            return kStatusNoSuchDevice;
        case EACCES:
        case EPERM:
        case EBUSY:
        case EROFS:
            return kStatusAccessDenied;
        case EISDIR:
        case ENOTDIR:
            return kStatusNotScsiDevice;
        default:
            return kStatusTransportError;
    }
}

Status statusForPassThroughError(uint32_t error) {
    switch (error) {
        case ENODEV:
        case ENXIO:
            return kStatusDeviceGone;
        case ETIMEDOUT:
            return kStatusTimedOut;
        case ENOTTY:
            return kStatusNotScsiDevice;
        // The block layer refuses a transfer longer than the queue's largest request, or one it
        // cannot map or bounce, with EINVAL or ENOMEM; the device never saw the command.
        case EINVAL:
        case ENOMEM:
            return kStatusTransferRefused;
        case EACCES:
        case EPERM:
            return kStatusAccessDenied;
        default:
            return kStatusTransportError;
    }
}

}  // namespace kivscsi::detail

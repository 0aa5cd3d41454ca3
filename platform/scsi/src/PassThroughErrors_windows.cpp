#include <windows.h>

#include "PassThroughErrors.h"

namespace kivscsi::detail {

Status statusForOpenError(uint32_t error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_DEV_NOT_EXIST:
            return kStatusNoSuchDevice;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return kStatusAccessDenied;
        case ERROR_DIRECTORY:
            return kStatusNotScsiDevice;
        default:
            return kStatusTransportError;
    }
}

Status statusForPassThroughError(uint32_t error) {
    switch (error) {
        case ERROR_DEVICE_NOT_CONNECTED:
        case ERROR_DEV_NOT_EXIST:
        case ERROR_FILE_NOT_FOUND:
        case ERROR_DEVICE_REMOVED:
            return kStatusDeviceGone;
        case ERROR_SEM_TIMEOUT:
        case ERROR_TIMEOUT:
            return kStatusTimedOut;
        case ERROR_INVALID_FUNCTION:
        case ERROR_NOT_SUPPORTED:
            return kStatusNotScsiDevice;
        // The port driver checks the transfer against the adapter's largest transfer and
        // alignment, and refuses it before the device sees the command.
        case ERROR_INVALID_PARAMETER:
        case ERROR_INVALID_USER_BUFFER:
        case ERROR_NOT_ENOUGH_MEMORY:
            return kStatusTransferRefused;
        case ERROR_ACCESS_DENIED:
            return kStatusAccessDenied;
        case ERROR_BUSY:
            return kStatusDeviceBusy;
        default:
            return kStatusTransportError;
    }
}

}  // namespace kivscsi::detail

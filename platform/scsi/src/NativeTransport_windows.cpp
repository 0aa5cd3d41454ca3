// SCSI pass-through direct for Windows devices (\\.\CdRom0, \\.\E:).
#include <windows.h>

// winioctl.h first: the lean windows.h leaves out what ntddscsi.h builds on.
#include <winioctl.h>

#include <ntddscsi.h>

#include <malloc.h>

#include <algorithm>
#include <cstring>

#include "NativeTransport.h"
#include "os/Clock.h"
#include "os/Utf8.h"

namespace kivscsi {
namespace {

// The request block and its sense buffer travel in one allocation; the sense offset is
// relative to the start of the request.
struct PassThroughRequest {
    SCSI_PASS_THROUGH_DIRECT sptd;
    ULONG alignmentFiller;
    UCHAR sense[kMaxSenseLength];
};

Status statusForOpenError(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_DEV_NOT_EXIST:
            return kStatusNoSuchDevice;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return kStatusAccessDenied;
        default:
            return kStatusTransportError;
    }
}

Status statusForIoctlError(DWORD error) {
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
        case ERROR_INVALID_PARAMETER:
        case ERROR_INVALID_USER_BUFFER:
        case ERROR_NOT_ENOUGH_MEMORY:
            return kStatusInvalidRequest;
        case ERROR_ACCESS_DENIED:
            return kStatusAccessDenied;
        case ERROR_BUSY:
            return kStatusDeviceBusy;
        default:
            return kStatusTransportError;
    }
}

UCHAR sptdDirection(DataDirection direction) {
    switch (direction) {
        case DataDirection::FromDevice:
            return SCSI_IOCTL_DATA_IN;
        case DataDirection::ToDevice:
            return SCSI_IOCTL_DATA_OUT;
        case DataDirection::None:
            break;
    }
    return SCSI_IOCTL_DATA_UNSPECIFIED;
}

// A buffer aligned as the adapter requires, used when the caller's buffer is not.
class AlignedBuffer {
public:
    AlignedBuffer(size_t size, size_t alignment)
        : data_(size == 0 ? nullptr : _aligned_malloc(size, alignment)) {}
    ~AlignedBuffer() { _aligned_free(data_); }
    AlignedBuffer(const AlignedBuffer&) = delete;
    AlignedBuffer& operator=(const AlignedBuffer&) = delete;
    void* data() const { return data_; }

private:
    void* data_;
};

class PassThroughTransport : public Transport {
public:
    PassThroughTransport(HANDLE handle, size_t alignment)
        : handle_(handle), alignment_(alignment) {}
    ~PassThroughTransport() override { CloseHandle(handle_); }

    ScsiResponse send(const ScsiCommand& command) override {
        ScsiResponse response;
        if (command.cdbLength == 0 || command.cdbLength > kMaxCdbLength ||
            (command.direction != DataDirection::None && command.bufferLength > 0 &&
             command.buffer == nullptr)) {
            response.transportStatus = kStatusInvalidRequest;
            return response;
        }
        const bool hasData = command.direction != DataDirection::None && command.bufferLength > 0;
        const bool aligned = reinterpret_cast<uintptr_t>(command.buffer) % alignment_ == 0;
        AlignedBuffer bounce(hasData && !aligned ? command.bufferLength : 0, alignment_);
        if (hasData && !aligned && bounce.data() == nullptr) {
            response.transportStatus = kStatusInvalidRequest;
            return response;
        }
        void* data = hasData ? (aligned ? command.buffer : bounce.data()) : nullptr;
        if (hasData && !aligned && command.direction == DataDirection::ToDevice) {
            std::memcpy(data, command.buffer, command.bufferLength);
        }

        PassThroughRequest request{};
        request.sptd.Length = sizeof(SCSI_PASS_THROUGH_DIRECT);
        request.sptd.CdbLength = command.cdbLength;
        request.sptd.SenseInfoLength = kMaxSenseLength;
        request.sptd.SenseInfoOffset = offsetof(PassThroughRequest, sense);
        request.sptd.DataIn = hasData ? sptdDirection(command.direction)
                                      : static_cast<UCHAR>(SCSI_IOCTL_DATA_UNSPECIFIED);
        request.sptd.DataTransferLength = hasData ? command.bufferLength : 0;
        request.sptd.DataBuffer = data;
        // Whole seconds, rounded up, at least one.
        request.sptd.TimeOutValue = std::max<ULONG>(1, (command.timeoutMs + 999) / 1000);
        std::memcpy(request.sptd.Cdb, command.cdb.data(), command.cdbLength);

        DWORD returned = 0;
        const uint64_t start = os::clock().monotonicMilliseconds();
        const BOOL ok =
            DeviceIoControl(handle_, IOCTL_SCSI_PASS_THROUGH_DIRECT, &request, sizeof(request),
                            &request, sizeof(request), &returned, nullptr);
        const DWORD error = ok ? ERROR_SUCCESS : GetLastError();
        response.durationMs = static_cast<uint32_t>(
            std::min<uint64_t>(os::clock().monotonicMilliseconds() - start, UINT32_MAX));
        if (!ok) {
            response.transportStatus = statusForIoctlError(error);
            return response;
        }
        const uint32_t transferred =
            hasData ? std::min<uint32_t>(request.sptd.DataTransferLength, command.bufferLength) : 0;
        if (hasData && !aligned && command.direction == DataDirection::FromDevice) {
            std::memcpy(command.buffer, data, transferred);
        }
        response.scsiStatus = request.sptd.ScsiStatus;
        response.senseLength = std::min<uint8_t>(request.sptd.SenseInfoLength, kMaxSenseLength);
        std::memcpy(response.sense.data(), request.sense, response.senseLength);
        response.residual = hasData ? command.bufferLength - transferred : 0;
        return response;
    }

private:
    HANDLE handle_;
    size_t alignment_;
};

// The adapter's buffer alignment; pass-through direct hands the caller's pages to the
// adapter, which may refuse unaligned ones.
size_t adapterAlignment(HANDLE handle) {
    IO_SCSI_CAPABILITIES capabilities{};
    DWORD returned = 0;
    size_t alignment = 16;
    if (DeviceIoControl(handle, IOCTL_SCSI_GET_CAPABILITIES, nullptr, 0, &capabilities,
                        sizeof(capabilities), &returned, nullptr)) {
        alignment = std::max<size_t>(alignment, size_t{capabilities.AlignmentMask} + 1);
    }
    return alignment;
}

}  // namespace

OpenResult openNativeTransport(const std::string& deviceName) {
    const std::wstring wideName = os::fromUtf8(deviceName);
    HANDLE handle =
        CreateFileW(wideName.c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return {nullptr, statusForOpenError(GetLastError())};
    return {std::make_unique<PassThroughTransport>(handle, adapterAlignment(handle)), kStatusGood};
}

}  // namespace kivscsi

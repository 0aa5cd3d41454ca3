// SCSI pass-through direct for Windows devices (\\.\CdRom0, \\.\E:).
#include <windows.h>

// winioctl.h first: the lean windows.h leaves out what ntddscsi.h builds on.
#include <winioctl.h>

#include <ntddscsi.h>

#include <malloc.h>

#include <algorithm>
#include <cstring>

#include "NativeTransport.h"
#include "PassThroughErrors.h"
#include "PassThroughLimits.h"
#include "os/DeviceControl.h"
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
    PassThroughTransport(HANDLE handle, bool owned, detail::AdapterLimits limits)
        : Transport(Deadline::KeptByDevice), handle_(handle), owned_(owned), limits_(limits) {}
    ~PassThroughTransport() override {
        if (owned_) CloseHandle(handle_);
    }

private:
    void deliver(const ScsiCommand& command, ScsiResponse& response) override {
        const bool hasData = command.direction != DataDirection::None && command.bufferLength > 0;
        if (hasData && command.bufferLength > limits_.maxTransferBytes) {
            // The adapter cannot move it in one request, and a command cannot be split here.
            response.transportStatus = kStatusTransferRefused;
            return;
        }
        const size_t alignment = limits_.alignment;
        const bool aligned = reinterpret_cast<uintptr_t>(command.buffer) % alignment == 0;
        AlignedBuffer bounce(hasData && !aligned ? command.bufferLength : 0, alignment);
        if (hasData && !aligned && bounce.data() == nullptr) {
            response.transportStatus = kStatusTransferRefused;
            return;
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
        request.sptd.TimeOutValue = detail::passThroughTimeoutSeconds(command.timeoutMs);
        std::memcpy(request.sptd.Cdb, command.cdb.data(), command.cdbLength);

        const os::ControlResult sent =
            os::controlDevice(handle_, IOCTL_SCSI_PASS_THROUGH_DIRECT, &request, sizeof(request),
                              &request, sizeof(request));
        if (!sent.ok()) {
            response.transportStatus = detail::statusForPassThroughError(sent.error);
            return;
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
    }

    HANDLE handle_;
    bool owned_;  // false: a drive's handle, closed by the drive
    detail::AdapterLimits limits_;
};

// Pass-through direct hands the caller's pages to the adapter, which may refuse unaligned ones
// or more than it can move at once. The storage adapter descriptor answers for the class-driver
// handles opened here; IOCTL_SCSI_GET_CAPABILITIES reaches only legacy port drivers.
detail::AdapterLimits adapterLimits(HANDLE handle) {
    STORAGE_PROPERTY_QUERY query{};
    query.PropertyId = StorageAdapterProperty;
    query.QueryType = PropertyStandardQuery;
    STORAGE_ADAPTER_DESCRIPTOR descriptor{};
    const os::ControlResult answer = os::controlDevice(
        handle, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, &descriptor, sizeof descriptor);
    if (answer.ok()) {
        if (auto limits = detail::adapterLimitsFromDescriptor(&descriptor, answer.bytes)) {
            return *limits;
        }
    }
    return detail::defaultAdapterLimits();
}

// No directory takes a command, but opening one fails as "access denied" (or, under some
// systems, succeeds): ask the file system first. Names in the device namespace are devices.
bool isDirectory(const std::wstring& name) {
    if (name.rfind(L"\\\\.\\", 0) == 0) return false;
    const DWORD attributes = GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

OpenResult openNativeTransport(const std::string& deviceName) {
    const std::wstring wideName = os::fromUtf8(deviceName);
    if (isDirectory(wideName)) return {nullptr, kStatusNotScsiDevice};
    HANDLE handle =
        CreateFileW(wideName.c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return {nullptr, detail::statusForOpenError(GetLastError())};
    }
    return {std::make_unique<PassThroughTransport>(handle, true, adapterLimits(handle)),
            kStatusGood};
}

OpenResult borrowNativeTransport(os::NativeHandle handle) {
    HANDLE held = static_cast<HANDLE>(handle);
    return {std::make_unique<PassThroughTransport>(held, false, adapterLimits(held)), kStatusGood};
}

}  // namespace kivscsi

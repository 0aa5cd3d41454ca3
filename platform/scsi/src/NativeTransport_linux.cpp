// SG_IO pass-through for Linux SCSI generic and CD-ROM block devices (/dev/sg*, /dev/sr*).
#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "NativeTransport.h"
#include "PassThroughErrors.h"
#include "scsi/SgIoStatus.h"

namespace kivscsi {
namespace {

int sgDirection(DataDirection direction) {
    switch (direction) {
        case DataDirection::FromDevice:
            return SG_DXFER_FROM_DEV;
        case DataDirection::ToDevice:
            return SG_DXFER_TO_DEV;
        case DataDirection::None:
            break;
    }
    return SG_DXFER_NONE;
}

class SgTransport : public Transport {
public:
    SgTransport(int fd, bool owned) : Transport(Deadline::KeptByDevice), fd_(fd), owned_(owned) {}
    ~SgTransport() override {
        if (owned_) ::close(fd_);
    }

private:
    void deliver(const ScsiCommand& command, ScsiResponse& response) override {
        const bool hasData = command.direction != DataDirection::None && command.bufferLength > 0;
        unsigned char cdb[kMaxCdbLength];
        std::copy(command.cdb.begin(), command.cdb.end(), cdb);

        sg_io_hdr_t io{};
        io.interface_id = 'S';
        io.dxfer_direction = hasData ? sgDirection(command.direction) : SG_DXFER_NONE;
        io.cmd_len = command.cdbLength;
        io.cmdp = cdb;
        io.mx_sb_len = static_cast<unsigned char>(response.sense.size());
        io.sbp = response.sense.data();
        io.dxfer_len = hasData ? command.bufferLength : 0;
        io.dxferp = hasData ? command.buffer : nullptr;
        io.timeout = command.timeoutMs;

        if (::ioctl(fd_, SG_IO, &io) < 0) {
            response.transportStatus =
                detail::statusForPassThroughError(static_cast<uint32_t>(errno));
            return;
        }
        response.transportStatus = statusFromSgIoHost(io.host_status, io.driver_status);
        if (response.transportStatus != kStatusGood) return;
        response.scsiStatus = io.status;
        response.senseLength = io.sb_len_wr;
        response.residual = hasData ? static_cast<uint32_t>(io.resid) : 0;
    }

    int fd_;
    bool owned_;  // false: a drive's descriptor, closed by the drive
};

bool answersSgIo(int fd) {
    int version = 0;
    return ::ioctl(fd, SG_GET_VERSION_NUM, &version) >= 0;
}

}  // namespace

OpenResult openNativeTransport(const std::string& deviceName) {
    // O_NONBLOCK lets a CD-ROM device open without a disc in it.
    int fd = ::open(deviceName.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0 && (errno == EACCES || errno == EROFS)) {
        fd = ::open(deviceName.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }
    if (fd < 0) return {nullptr, detail::statusForOpenError(static_cast<uint32_t>(errno))};
    if (!answersSgIo(fd)) {
        ::close(fd);
        return {nullptr, kStatusNotScsiDevice};
    }
    return {std::make_unique<SgTransport>(fd, true), kStatusGood};
}

OpenResult borrowNativeTransport(os::NativeHandle handle) {
    if (!answersSgIo(handle)) return {nullptr, kStatusNotScsiDevice};
    return {std::make_unique<SgTransport>(handle, false), kStatusGood};
}

}  // namespace kivscsi

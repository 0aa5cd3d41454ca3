#include "scsi/SgIoStatus.h"

namespace kivscsi {
namespace {

// Values of sg_io_hdr.host_status and driver_status the kernel reports.
constexpr uint32_t kHostNoConnect = 0x01;
constexpr uint32_t kHostTimeOut = 0x03;
constexpr uint32_t kHostBadTarget = 0x04;
constexpr uint32_t kDriverTimeout = 0x06;
constexpr uint32_t kDriverStatusMask = 0x0F;

}  // namespace

Status statusFromSgIoHost(uint32_t hostStatus, uint32_t driverStatus) {
    if (hostStatus == kHostTimeOut || (driverStatus & kDriverStatusMask) == kDriverTimeout) {
        return kStatusTimedOut;
    }
    if (hostStatus == kHostNoConnect || hostStatus == kHostBadTarget) return kStatusDeviceGone;
    return hostStatus != 0 ? kStatusAdapterError : kStatusGood;
}

}  // namespace kivscsi

// What the host and driver status bytes of a Linux SG_IO answer (sg_io_hdr.host_status and
// driver_status) mean to the library. The SG_IO transport uses it, and so does anything that
// replays answers recorded through SG_IO, on any platform.
#pragma once

#include <cstdint>

#include "scsi/Export.h"
#include "scsi/Status.h"

namespace kivscsi {

// 0 when the command reached the device and it answered (its SCSI status and sense then say
// how it went); kStatusTimedOut when the host adapter or the driver timed it out;
// kStatusDeviceGone when the target could not be reached; kStatusAdapterError for any other
// host adapter failure.
SCSI_API Status statusFromSgIoHost(uint32_t hostStatus, uint32_t driverStatus);

}  // namespace kivscsi

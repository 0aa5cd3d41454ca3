// _SCSI_PATH: the address of a SCSI device as the SCSI command library takes it.
#pragma once

#include <cstdint>

// Four 8-bit components in the order the command library and the device property "SCSIPath"
// list them: adapter port, bus path, target id, logical unit.
struct _SCSI_PATH {
    uint8_t port = 0;
    uint8_t path = 0;
    uint8_t target = 0;
    uint8_t lun = 0;
};

#include "optical/CurrentProfile.h"

#include "scsi/DiscCommands.h"

namespace host {

uint16_t currentProfileOf(const std::string& deviceName) {
    // The feature header alone: its bytes 6-7 hold the current profile.
    uint8_t header[8] = {};
    uint32_t received = 0;
    constexpr uint8_t kCurrentFeatures = 1;
    if (kivscsi::GetConfiguration(_SCSI_PATH{}, deviceName.c_str(), kCurrentFeatures, 0, header,
                                  sizeof(header), &received) != 0 ||
        received < sizeof(header))
        return 0;
    return static_cast<uint16_t>(header[6] << 8 | header[7]);
}

}  // namespace host

#include "optical/CurrentProfile.h"

#include "scsi/Decoders.h"
#include "scsi/DiscCommands.h"

namespace host {

uint16_t currentProfileOf(const std::string& deviceName) {
    // The feature header alone holds the current profile.
    uint8_t header[8] = {};
    uint32_t received = 0;
    constexpr uint8_t kCurrentFeatures = 1;
    if (kivscsi::GetConfiguration(_SCSI_PATH{}, deviceName.c_str(), kCurrentFeatures, 0, header,
                                  sizeof(header), &received) != 0)
        return 0;
    const auto decoded = kivscsi::decodeFeatureHeader(header, received);
    return decoded ? decoded->currentProfile : 0;
}

}  // namespace host

// Decoders of GET CONFIGURATION and GET EVENT STATUS NOTIFICATION answers.
#include "AnswerLimit.h"
#include "scsi/ByteOrder.h"
#include "scsi/Decoders.h"

namespace kivscsi {
namespace {

constexpr size_t kFeatureHeaderLength = 8;
constexpr size_t kFeatureDescriptorHeaderLength = 4;
constexpr size_t kProfileDescriptorLength = 4;
constexpr uint16_t kProfileListFeature = 0x0000;

constexpr size_t kEventHeaderLength = 4;
constexpr size_t kMediaStatusOffset = 5;

size_t configurationLimit(const uint8_t* data, size_t received) {
    return answerLimit(received, 4, readBig32(data));
}

}  // namespace

std::optional<FeatureHeader> decodeFeatureHeader(const uint8_t* data, size_t received) {
    if (data == nullptr || received < kFeatureHeaderLength) return std::nullopt;
    FeatureHeader header;
    header.dataLength = readBig32(data);
    header.currentProfile = readBig16(data + 6);
    return header;
}

std::optional<FeatureDescriptor> findFeature(const uint8_t* data, size_t received, uint16_t code) {
    if (data == nullptr || received < kFeatureHeaderLength) return std::nullopt;
    const size_t limit = configurationLimit(data, received);
    size_t offset = kFeatureHeaderLength;
    while (limit >= kFeatureDescriptorHeaderLength &&
           offset <= limit - kFeatureDescriptorHeaderLength) {
        const uint8_t* descriptor = data + offset;
        const uint8_t additional = descriptor[3];
        if (readBig16(descriptor) == code) {
            FeatureDescriptor feature;
            feature.code = code;
            feature.version = static_cast<uint8_t>((descriptor[2] >> 2) & 0x0F);
            feature.persistent = (descriptor[2] & 0x02) != 0;
            feature.current = (descriptor[2] & 0x01) != 0;
            feature.additionalLength = additional;
            feature.data = descriptor + kFeatureDescriptorHeaderLength;
            feature.available =
                std::min<size_t>(additional, limit - offset - kFeatureDescriptorHeaderLength);
            return feature;
        }
        offset += kFeatureDescriptorHeaderLength + additional;
    }
    return std::nullopt;
}

std::vector<ProfileEntry> decodeProfileList(const uint8_t* data, size_t received) {
    std::vector<ProfileEntry> profiles;
    const std::optional<FeatureDescriptor> list = findFeature(data, received, kProfileListFeature);
    if (!list) return profiles;
    for (size_t offset = 0; offset + kProfileDescriptorLength <= list->available;
         offset += kProfileDescriptorLength) {
        const uint8_t* entry = list->data + offset;
        profiles.push_back({readBig16(entry), (entry[2] & 0x01) != 0});
    }
    return profiles;
}

std::optional<MediaEvent> decodeMediaEvent(const uint8_t* data, size_t received) {
    if (data == nullptr || received < kEventHeaderLength) return std::nullopt;
    MediaEvent event;
    event.eventDataLength = readBig16(data);
    event.noEventAvailable = (data[2] & 0x80) != 0;
    event.notificationClass = data[2] & 0x07;
    event.supportedClasses = data[3];
    const size_t limit = answerLimit(received, 2, event.eventDataLength);
    if (limit > kEventHeaderLength) event.eventCode = data[kEventHeaderLength] & 0x0F;
    if (limit > kMediaStatusOffset) {
        event.hasMediaStatus = true;
        event.doorOpen = (data[kMediaStatusOffset] & 0x01) != 0;
        event.mediaPresent = (data[kMediaStatusOffset] & 0x02) != 0;
    }
    return event;
}

}  // namespace kivscsi

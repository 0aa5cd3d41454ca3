// Decoders of track information and write speed answers.
#include "AnswerLimit.h"
#include "scsi/ByteOrder.h"
#include "scsi/Decoders.h"

namespace kivscsi {
namespace {

constexpr size_t kTrackInformationFields = 28;  // up to the end of Track Size
constexpr size_t kTrackNumberMsb = 32;
constexpr size_t kSessionNumberMsb = 33;
constexpr size_t kPerformanceHeaderLength = 8;
constexpr size_t kWriteSpeedDescriptorLength = 16;

}  // namespace

std::optional<TrackInformation> decodeTrackInformation(const uint8_t* data, size_t received) {
    if (data == nullptr || received < 2) return std::nullopt;
    const size_t limit = answerLimit(received, 2, readBig16(data));
    if (limit < kTrackInformationFields) return std::nullopt;
    const auto msbAt = [&](size_t offset) -> uint16_t {
        return offset < limit ? static_cast<uint16_t>(data[offset] << 8) : uint16_t{0};
    };
    TrackInformation track;
    track.trackNumber = static_cast<uint16_t>(msbAt(kTrackNumberMsb) | data[2]);
    track.sessionNumber = static_cast<uint16_t>(msbAt(kSessionNumberMsb) | data[3]);
    track.trackMode = data[5] & 0x0F;
    track.dataMode = data[6] & 0x0F;
    track.blank = (data[6] & 0x40) != 0;
    track.packet = (data[6] & 0x20) != 0;
    track.fixedPacket = (data[6] & 0x10) != 0;
    track.nextWritableValid = (data[7] & 0x01) != 0;
    track.trackStart = readBig32(data + 8);
    track.nextWritableAddress = readBig32(data + 12);
    track.freeBlocks = readBig32(data + 16);
    track.fixedPacketSize = readBig32(data + 20);
    track.trackSize = readBig32(data + 24);
    return track;
}

std::vector<WriteSpeedDescriptor> decodeWriteSpeedDescriptors(const uint8_t* data,
                                                              size_t received) {
    std::vector<WriteSpeedDescriptor> descriptors;
    if (data == nullptr || received < kPerformanceHeaderLength) return descriptors;
    const size_t limit = answerLimit(received, 4, readBig32(data));
    for (size_t at = kPerformanceHeaderLength;
         at < limit && limit - at >= kWriteSpeedDescriptorLength;
         at += kWriteSpeedDescriptorLength) {
        descriptors.push_back(
            {readBig32(data + at + 4), readBig32(data + at + 8), readBig32(data + at + 12)});
    }
    return descriptors;
}

}  // namespace kivscsi

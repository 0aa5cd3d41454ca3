// Feeds random drive answers through every decoder of the SCSI command library and through the
// command path (an emulated target answering with random status, sense, residual and data).
// Built only with clang and -DLIBDRIVE_FUZZ=ON; see platform/scsi/README.md.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "os/EmulatedDevice.h"
#include "scsi/Scsi.h"

namespace {

constexpr const char* kDeviceName = "sim:fuzz-scsi";

// Answers every command with the bytes it was given.
class HostileTarget : public os::EmulatedDevice, public kivscsi::ScsiTarget {
public:
    void execute(const kivscsi::ScsiCommand& command, kivscsi::ScsiResponse& response) override {
        response.scsiStatus = scsiStatus;
        response.senseLength = senseLength;  // the transport must clamp this
        std::copy_n(sense.begin(), std::min(sense.size(), response.sense.size()),
                    response.sense.begin());
        if (command.direction == kivscsi::DataDirection::FromDevice) {
            const size_t count = std::min<size_t>(data.size(), command.bufferLength);
            std::copy_n(data.begin(), count, static_cast<uint8_t*>(command.buffer));
        }
        response.residual = residual;  // the transport must clamp this too
    }

    uint8_t scsiStatus = 0;
    uint8_t senseLength = 0;
    uint32_t residual = 0;
    std::vector<uint8_t> sense;
    std::vector<uint8_t> data;
};

void decodeEverything(const uint8_t* data, size_t size) {
    kivscsi::statusFromSense(data, size);
    kivscsi::decodeCapacity(data, size);
    kivscsi::decodeFeatureHeader(data, size);
    kivscsi::decodeProfileList(data, size);
    kivscsi::findFeature(data, size, 0x0107);
    kivscsi::decodeMediaEvent(data, size);
    kivscsi::decodeDiscInformation(data, size);
    kivscsi::decodeTrackInformation(data, size);
    kivscsi::decodeWriteSpeedDescriptors(data, size);
    for (uint8_t page : {uint8_t{0x05}, uint8_t{0x2A}, size > 0 ? data[0] : uint8_t{0}}) {
        if (auto found = kivscsi::findModePage(data, size, page)) {
            kivscsi::decodeCurrentWriteSpeed(*found);
        }
    }
    kivscsi::decodeDvdManufacturerId(data, size);
    kivscsi::decodeDvdDiscId(data, size);
    kivscsi::decodeBdManufacturerId(data, size);
    kivscsi::decodeBdDiscId(data, size);
    kivscsi::decodeCopyProtectionType(data, size);
    kivscsi::decodeAtip(data, size);
}

// The decoders run on the answer as the command path delivered it: a heap copy of exactly
// the received length, so reading past it is caught.
void sendAndDecode(HostileTarget& target) {
    std::vector<uint8_t> buffer(804);
    uint32_t received = 0;
    kivscsi::GetConfiguration({}, kDeviceName, 2, 0, buffer.data(), 512, &received);
    if (received > 512) __builtin_trap();
    const std::vector<uint8_t> answer(buffer.begin(), buffer.begin() + received);
    decodeEverything(answer.data(), answer.size());
    for (const bool speeds : {false, true}) {
        received = 0;
        const kivscsi::Status status =
            speeds ? kivscsi::GetWriteSpeedPerformance({}, kDeviceName, 8, buffer.data(), 136,
                                                       &received)
                   : kivscsi::ReadTrackInformation({}, kDeviceName, 1, 0xFF, buffer.data(), 48,
                                                   &received);
        if (received > (speeds ? 136u : 48u)) __builtin_trap();
        if (status != kivscsi::kStatusGood) continue;
        const std::vector<uint8_t> exact(buffer.begin(), buffer.begin() + received);
        if (speeds) {
            kivscsi::decodeWriteSpeedDescriptors(exact.data(), exact.size());
        } else {
            kivscsi::decodeTrackInformation(exact.data(), exact.size());
        }
    }
    kivscsi::Capacity capacity;
    kivscsi::ReadCapacity({}, kDeviceName, &capacity);
    (void)target;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    {
        const std::vector<uint8_t> exact(data, data + size);
        decodeEverything(exact.data(), exact.size());
    }
    if (size < 6) return 0;
    static const std::shared_ptr<HostileTarget> target = [] {
        auto created = std::make_shared<HostileTarget>();
        os::registerEmulatedDevice(kDeviceName, created);
        return created;
    }();
    target->scsiStatus = data[0];
    target->senseLength = data[1];
    target->residual = (uint32_t{data[2]} << 8) | data[3];
    const size_t senseBytes = std::min<size_t>(data[4], size - 6);
    target->sense.assign(data + 6, data + 6 + senseBytes);
    target->data.assign(data + 6 + senseBytes, data + size);
    sendAndDecode(*target);
    return 0;
}

#include "Bytes.h"
#include "Commands.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

constexpr size_t kTrackInformationLength = 48;
constexpr uint8_t kAddressIsLba = 0;
constexpr uint8_t kAddressIsTrack = 1;
constexpr uint8_t kAddressIsSession = 2;
constexpr uint32_t kIncompleteTrack = 0xFF;
constexpr size_t kPerformanceHeaderLength = 8;
constexpr size_t kWriteSpeedDescriptorLength = 16;
constexpr uint8_t kPerformanceTypeWriteSpeed = 0x03;
constexpr uint8_t kTrackModeData = 0x04;
constexpr uint8_t kTrackModeIncrementalData = 0x05;
constexpr uint8_t kDataModeOne = 0x01;
constexpr uint8_t kDataModeUnknown = 0x0F;

// The track the command's address field names.
std::optional<TrackExtent> addressedTrack(const Disc& disc, uint8_t type, uint32_t address) {
    switch (type) {
        case kAddressIsLba:
            return disc.trackHolding(address);
        case kAddressIsTrack:
            // A complete disc has no incomplete track; drives then describe the last one.
            if (address == kIncompleteTrack) return disc.track(disc.lastTrackInLastSession());
            if (address > 0xFFFF) return std::nullopt;
            return disc.track(static_cast<uint16_t>(address));
        case kAddressIsSession:
            for (uint16_t number = 1; number <= disc.lastTrackInLastSession(); ++number) {
                const auto extent = disc.track(number);
                if (extent->session == address) return extent;
            }
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

// Sectors written together: an ECC block on DVD and HD DVD, a cluster on BD.
uint32_t blockingFactor(MediaFamily family) {
    switch (family) {
        case MediaFamily::Dvd:
        case MediaFamily::HdDvd:
            return 16;
        case MediaFamily::Bd:
            return 32;
        case MediaFamily::Cd:
            break;
    }
    return 0;
}

std::vector<uint8_t> trackInformation(const Disc& disc, const TrackExtent& track) {
    const MediaFamily family = disc.traits().family;
    const bool sequential = disc.recording() == Recording::Sequential;
    // Packets (ECC blocks, clusters) are how DVD and BD write-once media are recorded.
    const bool packets = sequential && family != MediaFamily::Cd;
    const bool blank = track.recorded == 0 && disc.status() != DiscStatus::Complete;
    const uint32_t freeBlocks =
        !sequential        ? (disc.recording() == Recording::Overwrite ? disc.capacity() : 0)
        : track.incomplete ? track.size - track.recorded
                           : 0;
    const bool writable = sequential && track.incomplete && freeBlocks > 0;

    std::vector<uint8_t> data(kTrackInformationLength, 0);
    putBe16(&data[0], kTrackInformationLength - 2);
    data[2] = static_cast<uint8_t>(track.number);
    data[3] = static_cast<uint8_t>(track.session);
    data[5] = packets ? kTrackModeIncrementalData : kTrackModeData;
    data[6] = static_cast<uint8_t>(
        (blank ? 0x40 : 0) | (packets ? 0x30 : 0) |
        (blank && family == MediaFamily::Cd ? kDataModeUnknown : kDataModeOne));
    const bool lastRecordedValid = sequential && track.recorded > 0;
    data[7] = static_cast<uint8_t>((lastRecordedValid ? 0x02 : 0) | (writable ? 0x01 : 0));
    putBe32(&data[8], track.start);
    putBe32(&data[12], writable ? track.start + track.recorded : 0);
    putBe32(&data[16], freeBlocks);
    putBe32(&data[20], blockingFactor(family));
    putBe32(&data[24], track.size);
    putBe32(&data[28], lastRecordedValid ? track.start + track.recorded - 1 : 0);
    data[32] = static_cast<uint8_t>(track.number >> 8);
    data[33] = static_cast<uint8_t>(track.session >> 8);
    return data;
}

Reply readTrackInformation(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const Disc& disc = *state.tray.disc();
    const auto track = addressedTrack(disc, command.cdb[1] & 0x03, be32(&command.cdb[2]));
    if (!track) return failure(code::kInvalidFieldInCdb);
    return answer(trackInformation(disc, *track), be16(&command.cdb[7]));
}

// One descriptor for each write speed of the disc, fastest first, each reaching the disc's
// last sector; none for a disc that cannot be written.
Reply getPerformance(WriterState& state, const Command& command) {
    if (command.cdb[10] != kPerformanceTypeWriteSpeed) return failure(code::kInvalidFieldInCdb);
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const Disc& disc = *state.tray.disc();
    const std::span<const uint16_t> speeds = disc.writeSpeeds();
    const size_t count = std::min<size_t>(speeds.size(), be16(&command.cdb[8]));

    std::vector<uint8_t> data(kPerformanceHeaderLength + kWriteSpeedDescriptorLength * count, 0);
    putBe32(&data[0], static_cast<uint32_t>(data.size() - 4));
    for (size_t i = 0; i < count; ++i) {
        uint8_t* descriptor = &data[kPerformanceHeaderLength + kWriteSpeedDescriptorLength * i];
        putBe32(descriptor + 4, disc.capacity() - 1);
        putBe32(descriptor + 8, disc.traits().readSpeed);
        putBe32(descriptor + 12, speeds[i]);
    }
    return answer(std::move(data), command.dataInLength);
}

}  // namespace

void addTrackCommands(HandlerTable& table) {
    table[kivscsi::opcode::kReadTrackInformation] = readTrackInformation;
    table[kivscsi::opcode::kGetPerformance] = getPerformance;
}

}  // namespace sim::mmc

#include "Bytes.h"
#include "Commands.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

constexpr size_t kDiscInformationLength = 34;
constexpr size_t kAtipLength = 28;
constexpr uint32_t kCdPregapFrames = 150;
constexpr uint8_t kTocFormatTracks = 0;
constexpr uint8_t kTocFormatSessions = 1;
constexpr uint8_t kTocFormatAtip = 4;
constexpr uint8_t kLeadOutTrack = 0xAA;

void putMsf(uint8_t* p, const Msf& msf) {
    p[0] = 0;
    p[1] = msf.minutes;
    p[2] = msf.seconds;
    p[3] = msf.frames;
}

Msf msfOf(uint32_t lba) {
    const uint32_t frames = lba + kCdPregapFrames;
    return Msf{static_cast<uint8_t>(frames / (60 * 75)), static_cast<uint8_t>(frames / 75 % 60),
               static_cast<uint8_t>(frames % 75)};
}

void putAddress(uint8_t* p, uint32_t lba, bool msf) {
    if (msf) {
        putMsf(p, msfOf(lba));
    } else {
        putBe32(p, lba);
    }
}

Reply readCapacity(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const uint32_t readable = state.tray.disc()->readableSectors();
    std::vector<uint8_t> data(8, 0);
    putBe32(&data[0], readable > 0 ? readable - 1 : 0);
    putBe32(&data[4], kSectorBytes);
    return answer(std::move(data), data.size());
}

Reply readDiscInformation(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    if (command.cdb[1] & 0x07) return failure(code::kInvalidFieldInCdb);  // standard info only
    const Disc& disc = *state.tray.disc();
    const DiscStatus status = disc.status();

    std::vector<uint8_t> data(kDiscInformationLength, 0);
    putBe16(&data[0], kDiscInformationLength - 2);
    data[2] = static_cast<uint8_t>((disc.erasable() ? 0x10 : 0) |
                                   static_cast<uint8_t>(disc.lastSessionState()) << 2 |
                                   static_cast<uint8_t>(status));
    data[3] = 1;
    data[4] = static_cast<uint8_t>(disc.sessions());
    data[5] = static_cast<uint8_t>(disc.firstTrackInLastSession());
    data[6] = static_cast<uint8_t>(disc.lastTrackInLastSession());
    data[7] = static_cast<uint8_t>(disc.backgroundFormat(command.nowMs));
    data[9] = static_cast<uint8_t>(disc.sessions() >> 8);
    data[10] = static_cast<uint8_t>(disc.firstTrackInLastSession() >> 8);
    data[11] = static_cast<uint8_t>(disc.lastTrackInLastSession() >> 8);
    if (disc.traits().family == MediaFamily::Cd && status != DiscStatus::Complete) {
        putMsf(&data[16], disc.model().leadIn);
        putMsf(&data[20], disc.model().leadOut);
    } else {
        putBe32(&data[16], 0xFFFFFFFF);
        putBe32(&data[20], 0xFFFFFFFF);
    }
    return answer(std::move(data), be16(&command.cdb[7]));
}

std::vector<uint8_t> atip(const Disc& disc) {
    std::vector<uint8_t> data(kAtipLength, 0);
    putBe16(&data[0], kAtipLength - 2);
    data[4] = 0xD0;  // always-one bit, indicative writing power
    data[6] = static_cast<uint8_t>(0x80 | (disc.model().kind == MediaKind::CdRw ? 0x40 : 0));
    const Msf& leadIn = disc.model().leadIn;
    const Msf& leadOut = disc.model().leadOut;
    data[8] = leadIn.minutes;
    data[9] = leadIn.seconds;
    data[10] = leadIn.frames;
    data[12] = leadOut.minutes;
    data[13] = leadOut.seconds;
    data[14] = leadOut.frames;
    return data;
}

// One data track from LBA 0 up to the recorded end, as the table of contents shows it.
std::vector<uint8_t> tracks(const Disc& disc, bool msf) {
    std::vector<uint8_t> data(4 + 8 * 2, 0);
    putBe16(&data[0], static_cast<uint16_t>(data.size() - 2));
    data[2] = 1;
    data[3] = 1;
    data[5] = 0x14;  // ADR 1, data track
    data[6] = 1;
    putAddress(&data[8], 0, msf);
    data[13] = 0x14;
    data[14] = kLeadOutTrack;
    putAddress(&data[16], disc.readableSectors(), msf);
    return data;
}

std::vector<uint8_t> sessions(const Disc& disc, bool msf) {
    std::vector<uint8_t> data(12, 0);
    putBe16(&data[0], 10);
    data[2] = 1;
    data[3] = static_cast<uint8_t>(disc.sessions());
    data[5] = 0x14;
    data[6] = 1;
    putAddress(&data[8], 0, msf);
    return data;
}

Reply readTocPmaAtip(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const Disc& disc = *state.tray.disc();
    const bool msf = command.cdb[1] & 0x02;
    const size_t allocation = be16(&command.cdb[7]);
    switch (command.cdb[2] & 0x0F) {
        case kTocFormatAtip:
            if (disc.traits().family != MediaFamily::Cd ||
                disc.traits().recording == Recording::ReadOnly) {
                return failure(code::kInvalidFieldInCdb);
            }
            return answer(atip(disc), allocation);
        case kTocFormatTracks:
        case kTocFormatSessions:
            if (disc.status() == DiscStatus::Blank) return failure(code::kInvalidFieldInCdb);
            return answer((command.cdb[2] & 0x0F) == kTocFormatTracks ? tracks(disc, msf)
                                                                      : sessions(disc, msf),
                          allocation);
        default:
            return failure(code::kInvalidFieldInCdb);
    }
}

}  // namespace

void addDiscInformationCommands(HandlerTable& table) {
    table[kivscsi::opcode::kReadCapacity] = readCapacity;
    table[kivscsi::opcode::kReadDiscInformation] = readDiscInformation;
    table[kivscsi::opcode::kReadTocPmaAtip] = readTocPmaAtip;
}

}  // namespace sim::mmc

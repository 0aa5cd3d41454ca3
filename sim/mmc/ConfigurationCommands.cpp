#include <algorithm>
#include <string>

#include "Bytes.h"
#include "Commands.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

constexpr size_t kInquiryLength = 36;
constexpr size_t kFeatureHeaderLength = 8;

struct Feature {
    uint16_t code;
    uint8_t version;
    bool persistent;
    bool current;
    std::vector<uint8_t> data;  // the feature's own bytes after its 4-byte header
};

void putText(std::vector<uint8_t>& out, size_t offset, size_t width, const std::string& text) {
    for (size_t i = 0; i < width; ++i) {
        out[offset + i] = i < text.size() ? static_cast<uint8_t>(text[i]) : ' ';
    }
}

Reply inquiry(WriterState& state, const Command& command) {
    if (command.cdb[1] & 0x01) return failure(code::kInvalidFieldInCdb);  // no VPD pages
    std::vector<uint8_t> data(kInquiryLength, 0);
    data[0] = 0x05;  // CD/DVD device
    data[1] = 0x80;  // removable medium
    data[2] = 0x05;
    data[3] = 0x02;  // response data format
    data[4] = kInquiryLength - 5;
    putText(data, 8, 8, state.config.vendor);
    putText(data, 16, 16, state.config.product);
    putText(data, 32, 4, state.config.revision);
    return answer(std::move(data), be16(&command.cdb[3]));
}

std::vector<uint8_t> profileList(uint16_t currentProfile) {
    std::vector<uint8_t> data;
    for (const uint16_t profile : supportedProfiles()) {
        data.push_back(static_cast<uint8_t>(profile >> 8));
        data.push_back(static_cast<uint8_t>(profile));
        data.push_back(profile == currentProfile ? 0x01 : 0x00);  // CurrentP
        data.push_back(0);
    }
    return data;
}

std::vector<Feature> features(const WriterState& state, const Disc* disc) {
    const bool ready = disc != nullptr;
    const MediaFamily family = ready ? disc->traits().family : MediaFamily::Cd;
    const bool formattable = ready && (disc->erasable() || disc->model().kind == MediaKind::BdR);
    std::vector<uint8_t> randomReadable(8, 0);
    putBe32(&randomReadable[0], kSectorBytes);
    putBe16(&randomReadable[4], family == MediaFamily::Cd ? 1 : 16);  // blocking
    return {
        {0x0000, 0, true, true, profileList(ready ? disc->profile() : 0)},
        {0x0001, 1, true, true, {0, 0, 0, 2, 0x01, 0, 0, 0}},  // core: ATAPI, DBE
        {0x0002, 1, true, true, {0x02, 0, 0, 0}},              // morphing: OCEvent
        {0x0003, 0, true, true, {0x29, 0, 0, 0}},              // removable: tray, eject, lock
        {0x0010, 0, false, ready, randomReadable},
        {0x001E, 2, false, ready && family == MediaFamily::Cd, {0, 0, 0, 0}},
        {0x001F, 1, false, ready && family == MediaFamily::Dvd, {0, 0, 0, 0}},
        {0x0023, 1, false, formattable, {0, 0, 0, 0, 0, 0, 0, 0}},
        {0x0040, 0, false, ready && family == MediaFamily::Bd, std::vector<uint8_t>(28, 0)},
        {0x0050, 0, false, ready && family == MediaFamily::HdDvd, {0, 0, 0, 0}},
        {0x0107, 3, false, ready, {state.config.realTimeStreamingFlags, 0, 0, 0}},
    };
}

// RT 0: every feature from the starting one; 1: the current ones among them; 2: the starting
// feature alone.
Reply getConfiguration(WriterState& state, const Command& command) {
    const uint8_t requestType = command.cdb[1] & 0x03;
    if (requestType == 3) return failure(code::kInvalidFieldInCdb);
    const uint16_t startingFeature = be16(&command.cdb[2]);
    const Disc* disc = state.tray.readyDisc(command.nowMs);

    std::vector<uint8_t> data(kFeatureHeaderLength, 0);
    putBe16(&data[6], disc ? disc->profile() : 0);
    for (const Feature& feature : features(state, disc)) {
        const bool wanted = requestType == 2 ? feature.code == startingFeature
                                             : feature.code >= startingFeature &&
                                                   (requestType == 0 || feature.current);
        if (!wanted) continue;
        const size_t at = data.size();
        data.resize(at + 4);
        putBe16(&data[at], feature.code);
        data[at + 2] = static_cast<uint8_t>(feature.version << 2 | (feature.persistent ? 2 : 0) |
                                            (feature.current ? 1 : 0));
        data[at + 3] = static_cast<uint8_t>(feature.data.size());
        data.insert(data.end(), feature.data.begin(), feature.data.end());
    }
    putBe32(&data[0], static_cast<uint32_t>(data.size() - 4));
    return answer(std::move(data), be16(&command.cdb[7]));
}

}  // namespace

void addConfigurationCommands(HandlerTable& table) {
    table[kivscsi::opcode::kInquiry] = inquiry;
    table[kivscsi::opcode::kGetConfiguration] = getConfiguration;
}

}  // namespace sim::mmc

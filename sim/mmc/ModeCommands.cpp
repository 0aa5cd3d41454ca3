#include "Bytes.h"
#include "Commands.h"
#include "ModePages.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

constexpr uint8_t kAllPages = 0x3F;
constexpr size_t kModeHeaderLength = 8;

Reply modeSense10(WriterState& state, const Command& command) {
    const auto control = static_cast<PageControl>(command.cdb[2] >> 6);
    const uint8_t page = command.cdb[2] & 0x3F;
    if (control == PageControl::Saved) return failure(code::kSavingNotSupported);
    if (page != kWriteParametersPage && page != kCapabilitiesPage && page != kAllPages) {
        return failure(code::kInvalidFieldInCdb);
    }
    const Disc* disc = state.tray.readyDisc(command.nowMs);
    std::vector<uint8_t> data(kModeHeaderLength, 0);
    if (page == kWriteParametersPage || page == kAllPages) {
        const auto bytes = writeParametersPage(state.mode, control);
        data.insert(data.end(), bytes.begin(), bytes.end());
    }
    if (page == kCapabilitiesPage || page == kAllPages) {
        const auto bytes = capabilitiesPage(state, disc, control);
        data.insert(data.end(), bytes.begin(), bytes.end());
    }
    putBe16(&data[0], static_cast<uint16_t>(data.size() - 2));
    return answer(std::move(data), be16(&command.cdb[7]));
}

Reply modeSelect10(WriterState& state, const Command& command) {
    if (command.cdb[1] & 0x01) return failure(code::kInvalidFieldInCdb);  // no saved pages
    std::span<const uint8_t> list = command.dataOut;
    const size_t listLength = be16(&command.cdb[7]);
    if (list.size() > listLength) list = list.first(listLength);
    if (list.size() < listLength) return failure(code::kParameterListLengthError);
    return failure(applyModeSelect(state.mode, list));
}

Reply setCdSpeed(WriterState& state, const Command& command) {
    state.mode.requestedReadSpeed = be16(&command.cdb[2]);
    state.mode.requestedWriteSpeed = be16(&command.cdb[4]);
    return {};
}

}  // namespace

void addModeCommands(HandlerTable& table) {
    table[kivscsi::opcode::kModeSense10] = modeSense10;
    table[kivscsi::opcode::kModeSelect10] = modeSelect10;
    table[kivscsi::opcode::kSetCdSpeed] = setCdSpeed;
}

}  // namespace sim::mmc

#include "Bytes.h"
#include "Commands.h"
#include "ModePages.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

constexpr size_t kFormatListLength = 12;  // 4-byte list header + one 8-byte descriptor
constexpr uint8_t kFormatCodeMmc = 1;

// Starts a blank or foreground format of `seconds`; without Immed the command lasts as long.
Reply startOperation(WriterState& state, OperationKind kind, uint64_t nowMs, uint32_t seconds,
                     bool immediate) {
    state.operation = LongOperation{kind, nowMs, nowMs + uint64_t{seconds} * 1000};
    Reply reply;
    if (!immediate) reply.busyUntilMs = state.operation.endMs;
    return reply;
}

Reply blank(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const uint8_t type = command.cdb[1] & 0x07;
    const bool immediate = command.cdb[1] & 0x10;
    uint32_t seconds = 0;
    const Sense blanked = state.tray.disc()->blank(type, seconds);
    if (!blanked.good()) return failure(blanked);
    state.cache.clear();
    return startOperation(state, OperationKind::Blank, command.nowMs, seconds, immediate);
}

Reply formatUnit(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const bool formatData = command.cdb[1] & 0x10;
    if (!formatData || (command.cdb[1] & 0x07) != kFormatCodeMmc) {
        return failure(code::kInvalidFieldInCdb);
    }
    const std::span<const uint8_t> list = command.dataOut;
    if (list.size() < kFormatListLength) return failure(code::kParameterListLengthError);
    if (be16(&list[2]) != kFormatListLength - 4) return failure(code::kInvalidFieldInParameterList);
    const bool immediate = list[1] & 0x02;
    const uint8_t formatType = list[8] >> 2;

    uint32_t seconds = 0;
    const Sense formatted = state.tray.disc()->format(formatType, command.nowMs, seconds);
    if (!formatted.good()) return failure(formatted);
    state.cache.clear();
    if (seconds == 0) return {};
    return startOperation(state, OperationKind::Format, command.nowMs, seconds, immediate);
}

Reply closeTrackSession(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    writeToMedium(state, state.cache.takeAllDirty());
    const uint8_t function = command.cdb[2] & 0x07;
    return failure(
        state.tray.disc()->close(function, multiSessionRequested(state.mode), command.nowMs));
}

Reply sendOpcInformation(WriterState& state, const Command& command) {
    return failure(mediumReadiness(state, command.nowMs));
}

}  // namespace

void addRecordingCommands(HandlerTable& table) {
    table[kivscsi::opcode::kBlank] = blank;
    table[kivscsi::opcode::kFormatUnit] = formatUnit;
    table[kivscsi::opcode::kCloseTrackSession] = closeTrackSession;
    table[kivscsi::opcode::kSendOpcInformation] = sendOpcInformation;
}

}  // namespace sim::mmc

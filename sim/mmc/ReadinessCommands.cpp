#include "Bytes.h"
#include "Commands.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

constexpr uint8_t kMediaClass = 0x10;  // notification class request / supported classes bit
constexpr uint8_t kMediaClassNumber = 4;

Reply testUnitReady(WriterState& state, const Command& command) {
    return failure(mediumReadiness(state, command.nowMs));
}

// A background format does not keep the drive from working: it shows only here, as NO SENSE
// with FORMAT IN PROGRESS and its progress.
Sense backgroundActivity(const WriterState& state, uint64_t nowMs) {
    const Disc* disc = state.tray.readyDisc(nowMs);
    const auto progress = disc ? disc->backgroundFormatProgress(nowMs) : std::nullopt;
    if (!progress) return {};
    return Sense{key::kNoSense, code::kFormatInProgress, progress};
}

// Reports the drive's present condition (not ready, with progress while formatting or
// blanking, or a background format's progress) as sense data with GOOD status.
Reply requestSense(WriterState& state, const Command& command) {
    Sense condition = mediumReadiness(state, command.nowMs);
    if (condition.good()) condition = backgroundActivity(state, command.nowMs);
    const auto data = fixedSenseData(condition);
    return answer({data.begin(), data.end()}, command.cdb[4]);
}

Reply startStopUnit(WriterState& state, const Command& command) {
    const bool immediate = command.cdb[1] & 0x01;
    const uint8_t control = command.cdb[4];
    if (control & 0xF0) return {};  // power conditions change nothing here
    const bool loadEject = control & 0x02;
    const bool start = control & 0x01;
    Tray& tray = state.tray;
    const uint64_t now = command.nowMs;

    if (loadEject && !start) {
        if (tray.prevented()) return failure(code::kRemovalPrevented);
        if (state.operation.running(now)) return failure(mediumReadiness(state, now));
        flushAndDropCache(state);
        tray.openTray();
        return {};
    }
    if (loadEject) tray.closeTray(now, spinUpMilliseconds(state.config));
    if (!start) {
        writeToMedium(state, state.cache.takeAllDirty());
        return {};
    }
    const Sense readiness = tray.readiness(now);
    if (readiness.code == code::kBecomingReady) {
        Reply reply;
        if (!immediate) reply.busyUntilMs = tray.readyAtMs();
        return reply;
    }
    return loadEject ? Reply{} : failure(readiness);
}

Reply preventAllowMediumRemoval(WriterState& state, const Command& command) {
    state.tray.setPrevented(command.cdb[4] & 0x01);
    return {};
}

Reply getEventStatusNotification(WriterState& state, const Command& command) {
    if (!(command.cdb[1] & 0x01)) return failure(code::kInvalidFieldInCdb);  // polled only
    const size_t allocation = be16(&command.cdb[7]);
    if (!(command.cdb[4] & kMediaClass)) {
        std::vector<uint8_t> none(4, 0);
        putBe16(&none[0], 2);
        none[2] = 0x80;  // NEA: no event of a requested class is available
        none[3] = kMediaClass;
        return answer(std::move(none), allocation);
    }
    const Tray& tray = state.tray;
    std::vector<uint8_t> data(8, 0);
    putBe16(&data[0], 6);
    data[2] = kMediaClassNumber;
    data[3] = kMediaClass;
    data[4] = static_cast<uint8_t>(state.tray.takeEvent());
    data[5] =
        static_cast<uint8_t>((tray.open() ? 0x01 : 0) | (!tray.open() && tray.disc() ? 0x02 : 0));
    return answer(std::move(data), allocation);
}

}  // namespace

void addReadinessCommands(HandlerTable& table) {
    table[kivscsi::opcode::kTestUnitReady] = testUnitReady;
    table[kivscsi::opcode::kRequestSense] = requestSense;
    table[kivscsi::opcode::kStartStopUnit] = startStopUnit;
    table[kivscsi::opcode::kPreventAllowMediumRemoval] = preventAllowMediumRemoval;
    table[kivscsi::opcode::kGetEventStatusNotification] = getEventStatusNotification;
}

}  // namespace sim::mmc

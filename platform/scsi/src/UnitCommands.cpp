#include "scsi/UnitCommands.h"

#include "Execute.h"
#include "scsi/Decoders.h"
#include "scsi/Opcodes.h"

namespace kivscsi {
namespace {

constexpr uint8_t kStartBit = 0x01;
constexpr uint8_t kLoadEjectBit = 0x02;
constexpr uint8_t kPreventBit = 0x01;

constexpr uint32_t kCapacityAnswerLength = 8;

Status startStop(const _SCSI_PATH& path, const char* deviceName, uint8_t bits) {
    return execute(
        path, deviceName,
        CdbBuilder(opcode::kStartStopUnit, 6).byte(4, bits).timeout(kMechanicalTimeoutMs).command);
}

Status preventAllow(const _SCSI_PATH& path, const char* deviceName, uint8_t bits) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kPreventAllowMediumRemoval, 6).byte(4, bits).command);
}

}  // namespace

Status TestUnitReady(const _SCSI_PATH& path, const char* deviceName) {
    return execute(path, deviceName, CdbBuilder(opcode::kTestUnitReady, 6).command);
}

Status StartUnit(const _SCSI_PATH& path, const char* deviceName) {
    return startStop(path, deviceName, kStartBit);
}

Status StopUnit(const _SCSI_PATH& path, const char* deviceName) {
    return startStop(path, deviceName, 0);
}

Status Load(const _SCSI_PATH& path, const char* deviceName) {
    return startStop(path, deviceName, kStartBit | kLoadEjectBit);
}

Status EjectMedia(const _SCSI_PATH& path, const char* deviceName) {
    return startStop(path, deviceName, kLoadEjectBit);
}

Status PreventMediumRemoval(const _SCSI_PATH& path, const char* deviceName) {
    return preventAllow(path, deviceName, kPreventBit);
}

Status AllowMediumRemoval(const _SCSI_PATH& path, const char* deviceName) {
    return preventAllow(path, deviceName, 0);
}

Status ReadCapacity(const _SCSI_PATH& path, const char* deviceName, Capacity* capacity) {
    uint8_t answer[kCapacityAnswerLength] = {};
    uint32_t received = 0;
    const Status status = execute(
        path, deviceName,
        CdbBuilder(opcode::kReadCapacity, 10).dataIn(answer, sizeof(answer)).command, &received);
    if (status != kStatusGood) return status;
    const std::optional<Capacity> decoded = decodeCapacity(answer, received);
    if (!decoded) return kStatusShortAnswer;
    if (capacity != nullptr) *capacity = *decoded;
    return kStatusGood;
}

Status KIVR_SynchronizeCache(const _SCSI_PATH& path, const char* deviceName,
                             uint32_t timeoutSeconds) {
    return execute(
        path, deviceName,
        CdbBuilder(opcode::kSynchronizeCache, 10).timeout(timeoutSeconds * 1000).command);
}

}  // namespace kivscsi

#include "scsi/BlockCommands.h"

#include "Execute.h"
#include "scsi/Opcodes.h"

namespace kivscsi {
namespace {

constexpr uint8_t kForceUnitAccessBit = 0x08;

uint32_t milliseconds(uint32_t seconds) {
    const uint64_t value = uint64_t{seconds} * 1000;
    return value > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(value);
}

}  // namespace

Status ReadBlocksTimedEx(const _SCSI_PATH& path, const char* deviceName, void* buffer,
                         uint32_t bufferBytes, uint32_t lba, uint16_t count,
                         uint32_t timeoutSeconds) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kRead10, 10)
                       .big32(2, lba)
                       .big16(7, count)
                       .dataIn(buffer, bufferBytes)
                       .timeout(milliseconds(timeoutSeconds))
                       .command);
}

Status ReadBlocksFUAEx(const _SCSI_PATH& path, const char* deviceName, void* buffer,
                       uint32_t bufferBytes, uint32_t lba, uint16_t count) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kRead12, 12)
                       .byte(1, kForceUnitAccessBit)
                       .big32(2, lba)
                       .big32(6, count)
                       .dataIn(buffer, bufferBytes)
                       .timeout(milliseconds(kForcedReadTimeoutSeconds))
                       .command);
}

Status WriteBlocksEx(const _SCSI_PATH& path, const char* deviceName, const void* buffer,
                     uint32_t blockBytes, uint32_t lba, uint16_t count, uint32_t timeoutSeconds) {
    const uint64_t dataBytes = uint64_t{blockBytes} * count;
    if (dataBytes > UINT32_MAX) return kStatusInvalidRequest;
    return execute(path, deviceName,
                   CdbBuilder(opcode::kWrite10, 10)
                       .big32(2, lba)
                       .big16(7, count)
                       .dataOut(buffer, static_cast<uint32_t>(dataBytes))
                       .timeout(milliseconds(timeoutSeconds))
                       .command);
}

}  // namespace kivscsi

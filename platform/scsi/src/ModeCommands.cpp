#include "scsi/ModeCommands.h"

#include "Execute.h"
#include "scsi/Opcodes.h"

namespace kivscsi {
namespace {

constexpr uint8_t kPageCodeMask = 0x3F;
constexpr uint8_t kPageFormatBit = 0x10;
constexpr uint8_t kSavePagesBit = 0x01;
constexpr uint8_t kDoOpcBit = 0x01;

}  // namespace

Status KIVR_GetSenseData10(const _SCSI_PATH& path, const char* deviceName, uint8_t pageCode,
                           void* buffer, uint16_t allocation, uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kModeSense10, 10)
                       .byte(2, pageCode & kPageCodeMask)
                       .big16(7, allocation)
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

Status KIVR_SetSenseData10(const _SCSI_PATH& path, const char* deviceName, uint8_t flags,
                           const void* parameterList, uint16_t length) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kModeSelect10, 10)
                       .byte(1, kPageFormatBit | (flags & kSavePagesBit))
                       .big16(7, length)
                       .dataOut(parameterList, length)
                       .command);
}

Status KIVR_SetCDSpeed(const _SCSI_PATH& path, const char* deviceName, uint16_t readSpeed,
                       uint16_t writeSpeed) {
    return execute(
        path, deviceName,
        CdbBuilder(opcode::kSetCdSpeed, 12).big16(2, readSpeed).big16(4, writeSpeed).command);
}

Status SendOPCInfo(const _SCSI_PATH& path, const char* deviceName) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kSendOpcInformation, 10)
                       .byte(1, kDoOpcBit)
                       .timeout(kMechanicalTimeoutMs)
                       .command);
}

}  // namespace kivscsi

#include "scsi/RecordingCommands.h"

#include "Execute.h"
#include "scsi/Opcodes.h"

namespace kivscsi {
namespace {

constexpr uint8_t kFormatDataBit = 0x10;
constexpr uint8_t kFormatCodeMmc = 0x01;
constexpr uint8_t kImmediateBit = 0x01;
constexpr uint8_t kCloseFunctionMask = 0x07;
constexpr uint8_t kBlankTypeMask = 0x07;
constexpr uint8_t kCloseTrack = 1;

}  // namespace

Status Blank(const _SCSI_PATH& path, const char* deviceName, uint8_t type, uint32_t startAddress) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kBlank, 12)
                       .byte(1, type & kBlankTypeMask)
                       .big32(2, startAddress)
                       .timeout(kRecordingTimeoutMs)
                       .command);
}

Status FormatDvdUnit(const _SCSI_PATH& path, const char* deviceName, const void* formatList,
                     uint16_t length) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kFormatUnit, 6)
                       .byte(1, kFormatDataBit | kFormatCodeMmc)
                       .dataOut(formatList, length)
                       .timeout(kRecordingTimeoutMs)
                       .command);
}

Status CloseTrackSession(const _SCSI_PATH& path, const char* deviceName, uint8_t closeFunction,
                         uint16_t trackNumber, bool immediate) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kCloseTrackSession, 10)
                       .byte(1, immediate ? kImmediateBit : 0)
                       .byte(2, closeFunction & kCloseFunctionMask)
                       .big16(4, trackNumber)
                       .timeout(kRecordingTimeoutMs)
                       .command);
}

Status CloseTrack(const _SCSI_PATH& path, const char* deviceName, uint16_t trackNumber) {
    return CloseTrackSession(path, deviceName, kCloseTrack, trackNumber, false);
}

Status CloseFirstSession(const _SCSI_PATH& path, const char* deviceName, uint8_t closeFunction) {
    return CloseTrackSession(path, deviceName, closeFunction, 1, false);
}

}  // namespace kivscsi

#include "scsi/DiscCommands.h"

#include "Execute.h"
#include "scsi/Opcodes.h"

namespace kivscsi {
namespace {

constexpr uint8_t kMediaTypeDvd = 0x00;
constexpr uint8_t kMediaTypeBd = 0x01;
constexpr uint8_t kTocFormatAtip = 0x04;
constexpr uint8_t kPerformanceTypeWriteSpeed = 0x03;

Status readDiscStructure(const _SCSI_PATH& path, const char* deviceName, uint8_t mediaType,
                         uint32_t address, uint8_t layer, uint8_t format, void* buffer,
                         uint16_t allocation, uint8_t agid, uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kReadDiscStructure, 12)
                       .byte(1, mediaType)
                       .big32(2, address)
                       .byte(6, layer)
                       .byte(7, format)
                       .big16(8, allocation)
                       .byte(10, static_cast<uint8_t>((agid & 0x03) << 6))
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

}  // namespace

Status GetConfiguration(const _SCSI_PATH& path, const char* deviceName, uint8_t requestType,
                        uint16_t startingFeature, void* buffer, uint16_t allocation,
                        uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kGetConfiguration, 10)
                       .byte(1, requestType & 0x03)
                       .big16(2, startingFeature)
                       .big16(7, allocation)
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

Status GetEventStatusNotification(const _SCSI_PATH& path, const char* deviceName, bool polled,
                                  uint8_t classRequest, void* buffer, uint16_t allocation,
                                  uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kGetEventStatusNotification, 10)
                       .byte(1, polled ? 0x01 : 0x00)
                       .byte(4, classRequest)
                       .big16(7, allocation)
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

Status ReadDiscInformation(const _SCSI_PATH& path, const char* deviceName, void* buffer,
                           uint16_t allocation, uint8_t dataType, uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kReadDiscInformation, 10)
                       .byte(1, dataType & 0x07)
                       .big16(7, allocation)
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

Status ReadTrackInformation(const _SCSI_PATH& path, const char* deviceName, uint8_t addressType,
                            uint32_t address, void* buffer, uint16_t allocation,
                            uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kReadTrackInformation, 10)
                       .byte(1, addressType & 0x03)
                       .big32(2, address)
                       .big16(7, allocation)
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

Status GetWriteSpeedPerformance(const _SCSI_PATH& path, const char* deviceName,
                                uint16_t maxDescriptors, void* buffer, uint16_t allocation,
                                uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kGetPerformance, 12)
                       .big16(8, maxDescriptors)
                       .byte(10, kPerformanceTypeWriteSpeed)
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

Status ReadDvdStructure(const _SCSI_PATH& path, const char* deviceName, uint32_t address,
                        uint8_t layer, uint8_t format, void* buffer, uint16_t allocation,
                        uint8_t agid, uint32_t* received) {
    return readDiscStructure(path, deviceName, kMediaTypeDvd, address, layer, format, buffer,
                             allocation, agid, received);
}

Status ReadBdStructure(const _SCSI_PATH& path, const char* deviceName, uint32_t address,
                       uint8_t layer, uint8_t format, void* buffer, uint16_t allocation,
                       uint8_t agid, uint32_t* received) {
    return readDiscStructure(path, deviceName, kMediaTypeBd, address, layer, format, buffer,
                             allocation, agid, received);
}

Status KIVR_ReadATIP(const _SCSI_PATH& path, const char* deviceName, uint8_t msf, void* buffer,
                     uint16_t allocation, uint32_t* received) {
    return execute(path, deviceName,
                   CdbBuilder(opcode::kReadTocPmaAtip, 10)
                       .byte(1, msf ? 0x02 : 0x00)
                       .byte(2, kTocFormatAtip)
                       .big16(7, allocation)
                       .dataIn(buffer, allocation)
                       .command,
                   received);
}

}  // namespace kivscsi

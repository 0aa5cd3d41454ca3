#include "Execute.h"

#include <algorithm>
#include <string>

#include "scsi/Sense.h"
#include "scsi/TracingTransport.h"

namespace kivscsi {

CdbBuilder::CdbBuilder(uint8_t opcode, uint8_t length) {
    command.cdb[0] = opcode;
    command.cdbLength = length;
    command.timeoutMs = kShortTimeoutMs;
}

CdbBuilder& CdbBuilder::byte(size_t offset, uint8_t value) {
    command.cdb[offset] = value;
    return *this;
}

CdbBuilder& CdbBuilder::big16(size_t offset, uint16_t value) {
    command.cdb[offset] = static_cast<uint8_t>(value >> 8);
    command.cdb[offset + 1] = static_cast<uint8_t>(value);
    return *this;
}

CdbBuilder& CdbBuilder::big24(size_t offset, uint32_t value) {
    command.cdb[offset] = static_cast<uint8_t>(value >> 16);
    return big16(offset + 1, static_cast<uint16_t>(value));
}

CdbBuilder& CdbBuilder::big32(size_t offset, uint32_t value) {
    big16(offset, static_cast<uint16_t>(value >> 16));
    return big16(offset + 2, static_cast<uint16_t>(value));
}

CdbBuilder& CdbBuilder::dataIn(void* buffer, uint32_t length) {
    command.direction = DataDirection::FromDevice;
    command.buffer = buffer;
    command.bufferLength = length;
    return *this;
}

CdbBuilder& CdbBuilder::dataOut(const void* buffer, uint32_t length) {
    command.direction = DataDirection::ToDevice;
    // The transport only reads a data-out buffer.
    command.buffer = const_cast<void*>(buffer);
    command.bufferLength = length;
    return *this;
}

CdbBuilder& CdbBuilder::timeout(uint32_t milliseconds) {
    command.timeoutMs = milliseconds;
    return *this;
}

Status execute(const _SCSI_PATH& /*path*/, const char* deviceName, const ScsiCommand& command,
               uint32_t* received) {
    if (received != nullptr) *received = 0;
    if (deviceName == nullptr) return kStatusBadDeviceName;
    OpenResult opened = openTransport(deviceName);
    if (!opened.transport) return opened.status;
    TracingTransport transport(std::move(opened.transport), deviceName, installedTraceSink());
    const ScsiResponse response = transport.send(command);
    if (received != nullptr && response.transportStatus == kStatusGood &&
        command.direction != DataDirection::None) {
        *received = command.bufferLength - std::min(response.residual, command.bufferLength);
    }
    return statusFromResponse(response);
}

}  // namespace kivscsi

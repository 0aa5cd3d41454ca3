// Sending one command built by a command function: open the device by name, pass the command
// through the trace to the installed sink, close the device, and map the answer to a status.
#pragma once

#include <cstdint>

#include "scsi/ScsiPath.h"
#include "scsi/Status.h"
#include "scsi/Transport.h"

namespace kivscsi {

// Default timeouts of commands that take none from the caller.
inline constexpr uint32_t kShortTimeoutMs = 30'000;         // status and identification
inline constexpr uint32_t kMechanicalTimeoutMs = 60'000;    // tray, spin-up, OPC
inline constexpr uint32_t kRecordingTimeoutMs = 3'600'000;  // blank, format, close session

// Builds commands field by field; the opcode goes into byte 0.
struct CdbBuilder {
    ScsiCommand command;
    CdbBuilder(uint8_t opcode, uint8_t length);
    CdbBuilder& byte(size_t offset, uint8_t value);
    CdbBuilder& big16(size_t offset, uint16_t value);
    CdbBuilder& big24(size_t offset, uint32_t value);
    CdbBuilder& big32(size_t offset, uint32_t value);
    CdbBuilder& dataIn(void* buffer, uint32_t length);
    CdbBuilder& dataOut(const void* buffer, uint32_t length);
    CdbBuilder& timeout(uint32_t milliseconds);
};

// Sends `command` to `deviceName` (UTF-8). *received, when given, is set to the bytes the
// device transferred (bufferLength minus residual; 0 when the command failed before a data
// phase). The path is not used to address the device: the name selects it.
Status execute(const _SCSI_PATH& path, const char* deviceName, const ScsiCommand& command,
               uint32_t* received = nullptr);

}  // namespace kivscsi

#include "CommandNames.h"

#include "scsi/Opcodes.h"

namespace kivscsi {
namespace {

struct NamedOpcode {
    uint8_t opcode;
    const char* name;
};

// Every command this library sends, plus INQUIRY and REQUEST SENSE, which a trace of another
// user's commands may show.
constexpr NamedOpcode kNames[] = {
    {opcode::kTestUnitReady, "TEST UNIT READY"},
    {opcode::kRequestSense, "REQUEST SENSE"},
    {opcode::kFormatUnit, "FORMAT UNIT"},
    {opcode::kInquiry, "INQUIRY"},
    {opcode::kStartStopUnit, "START STOP UNIT"},
    {opcode::kPreventAllowMediumRemoval, "PREVENT ALLOW MEDIUM REMOVAL"},
    {opcode::kReadCapacity, "READ CAPACITY"},
    {opcode::kRead10, "READ(10)"},
    {opcode::kWrite10, "WRITE(10)"},
    {opcode::kSynchronizeCache, "SYNCHRONIZE CACHE"},
    {opcode::kReadTocPmaAtip, "READ TOC/PMA/ATIP"},
    {opcode::kGetConfiguration, "GET CONFIGURATION"},
    {opcode::kGetEventStatusNotification, "GET EVENT STATUS NOTIFICATION"},
    {opcode::kReadDiscInformation, "READ DISC INFORMATION"},
    {opcode::kReadTrackInformation, "READ TRACK INFORMATION"},
    {opcode::kSendOpcInformation, "SEND OPC INFORMATION"},
    {opcode::kModeSelect10, "MODE SELECT(10)"},
    {opcode::kModeSense10, "MODE SENSE(10)"},
    {opcode::kCloseTrackSession, "CLOSE TRACK/SESSION"},
    {opcode::kBlank, "BLANK"},
    {opcode::kRead12, "READ(12)"},
    {opcode::kWrite12, "WRITE(12)"},
    {opcode::kGetPerformance, "GET PERFORMANCE"},
    {opcode::kReadDiscStructure, "READ DISC STRUCTURE"},
    {opcode::kSetCdSpeed, "SET CD SPEED"},
};

}  // namespace

const char* commandName(uint8_t opcode) {
    for (const NamedOpcode& entry : kNames) {
        if (entry.opcode == opcode) return entry.name;
    }
    return nullptr;
}

}  // namespace kivscsi

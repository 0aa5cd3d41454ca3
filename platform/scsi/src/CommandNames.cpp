#include "CommandNames.h"

namespace kivscsi {
namespace {

struct NamedOpcode {
    uint8_t opcode;
    const char* name;
};

// Every command this library sends, plus INQUIRY and REQUEST SENSE, which a trace of another
// user's commands may show.
constexpr NamedOpcode kNames[] = {
    {0x00, "TEST UNIT READY"},
    {0x03, "REQUEST SENSE"},
    {0x04, "FORMAT UNIT"},
    {0x12, "INQUIRY"},
    {0x1B, "START STOP UNIT"},
    {0x1E, "PREVENT ALLOW MEDIUM REMOVAL"},
    {0x25, "READ CAPACITY"},
    {0x28, "READ(10)"},
    {0x2A, "WRITE(10)"},
    {0x35, "SYNCHRONIZE CACHE"},
    {0x43, "READ TOC/PMA/ATIP"},
    {0x46, "GET CONFIGURATION"},
    {0x4A, "GET EVENT STATUS NOTIFICATION"},
    {0x51, "READ DISC INFORMATION"},
    {0x52, "READ TRACK INFORMATION"},
    {0x54, "SEND OPC INFORMATION"},
    {0x55, "MODE SELECT(10)"},
    {0x5A, "MODE SENSE(10)"},
    {0x5B, "CLOSE TRACK/SESSION"},
    {0xA1, "BLANK"},
    {0xA8, "READ(12)"},
    {0xAA, "WRITE(12)"},
    {0xAC, "GET PERFORMANCE"},
    {0xAD, "READ DISC STRUCTURE"},
    {0xBB, "SET CD SPEED"},
};

}  // namespace

const char* commandName(uint8_t opcode) {
    for (const NamedOpcode& entry : kNames) {
        if (entry.opcode == opcode) return entry.name;
    }
    return nullptr;
}

}  // namespace kivscsi

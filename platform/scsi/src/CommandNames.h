// The MMC names of the commands, for the trace.
#pragma once

#include <cstdint>

namespace kivscsi {

// The command's name ("READ TRACK INFORMATION"), or nullptr for an operation code it does not
// know. The text is static.
const char* commandName(uint8_t opcode);

}  // namespace kivscsi

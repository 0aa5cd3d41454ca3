// emu: texts: parsed, and when valid set up as a registered writer whose disc then answers a
// READ TRACK INFORMATION and a read of its first sector. Time is virtual, so spin-up and
// transfers cost the fuzzer nothing.
#include <string>

#include "FuzzInput.h"
#include "optical/EmulatedWriterSession.h"
#include "optical/EmulatedWriterText.h"
#include "scsi/BlockCommands.h"
#include "scsi/DiscCommands.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzinput::useVirtualClock();
    std::string text(fuzzinput::textOf(data, size));
    if (!host::isEmulatedWriterText(text)) text = "emu:" + text;
    std::string error;
    const auto setup = host::parseEmulatedWriterText(text, &error);
    if (!setup) {
        if (error.empty()) __builtin_trap();
        return 0;
    }
    host::EmulatedWriterSession session(*setup, "\\\\.\\FuzzCdRom0");
    uint8_t answer[2048] = {};
    kivscsi::ReadTrackInformation(_SCSI_PATH{}, session.name().c_str(), 1, 0xFF, answer, 48);
    kivscsi::ReadBlocksFUAEx(_SCSI_PATH{}, session.name().c_str(), answer, sizeof(answer), 0, 1);
    return 0;
}

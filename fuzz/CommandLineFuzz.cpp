// drivediag's command lines: the input's zero bytes separate the arguments. Only parsed (and
// the help of the parsed command made): running one could touch real devices.
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "cli/CommandLine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<std::string> args = fuzzinput::split(fuzzinput::textOf(data, size), '\0');
    std::string error;
    const auto parsed = host::parseCommandLine(args, &error);
    if (!parsed) {
        if (error.empty()) __builtin_trap();
        return 0;
    }
    host::usageText(parsed->command);
    return 0;
}

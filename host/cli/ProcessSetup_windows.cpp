#include <windows.h>

#include <shellapi.h>

#include "cli/ProcessSetup.h"
#include "os/Utf8.h"

namespace host {
namespace {

// The wide command line split as the C runtime splits it, converted once to UTF-8.
std::vector<std::string> wideArguments() {
    int count = 0;
    LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> converted;
    if (arguments == nullptr) {
        return converted;
    }
    for (int i = 1; i < count; ++i) {
        converted.push_back(os::toUtf8(std::wstring(arguments[i])));
    }
    LocalFree(arguments);
    return converted;
}

}  // namespace

std::vector<std::string> startProcess(int argc, char** argv) {
    // An empty card reader or optical drive met while looking for a medium or listing volumes
    // must fail the call, not put up "There is no disk in the drive" and wait for a person.
    SetErrorMode(SEM_FAILCRITICALERRORS);
    // Without a console (output redirected) this fails harmlessly.
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::string> arguments = wideArguments();
    if (arguments.empty() && argc > 1) {
        arguments.assign(argv + 1, argv + argc);  // the wide line could not be split
    }
    return arguments;
}

}  // namespace host

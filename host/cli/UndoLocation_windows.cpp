#include <cstdlib>
#include <string>

#include "cli/UndoLocation.h"
#include "os/Utf8.h"

namespace host {

std::string stateDirectory() {
    const wchar_t* local = _wgetenv(L"LOCALAPPDATA");
    if (local == nullptr || local[0] == L'\0') return "";
    return os::toUtf8(std::wstring(local) + L"\\drivediag");
}

}  // namespace host

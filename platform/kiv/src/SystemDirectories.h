// The system's own answers for WindowsSystem: SystemDirectories_windows.cpp asks Windows,
// SystemDirectories_portable.cpp has none ("").
#pragma once

#include "kiv/String.h"

namespace kiv::platform {

String windowsDirectory();
String systemDirectory();

}  // namespace kiv::platform

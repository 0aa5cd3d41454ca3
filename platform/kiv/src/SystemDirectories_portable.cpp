#include "SystemDirectories.h"

namespace kiv::platform {

String windowsDirectory() { return String(); }

String systemDirectory() { return String(); }

}  // namespace kiv::platform

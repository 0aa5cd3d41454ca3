// The library's entry point for hosts.
#pragma once

#include "libDrive/Export.h"

namespace kivrlibdrive {

// Registers the library with the framework under the name "libDrive". Hosts call it once after
// loading the library and before constructing any drive or test; each call registers again.
LIBDRIVE_API void initLibDrive();

}  // namespace kivrlibdrive

// The library is registered once per process, before the first drive or test exists.
#pragma once

#include "libDrive/LibDrive.h"

namespace host {

inline void registerLibraryOnce() {
    static const bool registered = (kivrlibdrive::initLibDrive(), true);
    (void)registered;
}

}  // namespace host

#include <windows.h>

#include "libDrive/SectorFault.h"

namespace kivrlibdrive {

void raiseSectorFault() { RaiseException(kSectorFaultCode, 0, 0, nullptr); }

}  // namespace kivrlibdrive

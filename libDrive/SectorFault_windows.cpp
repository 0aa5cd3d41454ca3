#include <windows.h>

#include "SectorFault.h"

namespace kivrlibdrive {

void raiseSectorFault() { RaiseException(kSectorFaultCode, 0, 0, nullptr); }

}  // namespace kivrlibdrive

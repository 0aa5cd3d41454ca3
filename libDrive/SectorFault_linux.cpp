#include "SectorFault.h"
#include "kiv/Exception.h"

namespace kivrlibdrive {

// No structured exceptions here; an exception the caller can catch is the nearest equivalent.
void raiseSectorFault() {
    throw kiv::InternalError(L"structured exception " + kiv::String::fromNumber(kSectorFaultCode) +
                             L": the end of a sector span must lie above its start");
}

}  // namespace kivrlibdrive

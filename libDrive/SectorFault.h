// How a sector span that breaks its contract is reported, one file per platform. Internal to the
// library.
#pragma once

#include <cstdint>

namespace kivrlibdrive {

// The code of the structured exception a broken span raises on Windows.
inline constexpr uint32_t kSectorFaultCode = 7;

// Windows: raises the continuable structured exception kSectorFaultCode; it returns only when a
// handler continues execution. Elsewhere: throws kiv::InternalError naming the code.
void raiseSectorFault();

}  // namespace kivrlibdrive

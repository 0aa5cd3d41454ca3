// How a drive judges the write parameters page (05h) when a WRITE arrives.
#pragma once

#include "sim/mmc/Disc.h"
#include "sim/mmc/Sense.h"
#include "sim/mmc/WriterState.h"

namespace sim::mmc {

// Good when the page in `mode` allows writing `disc`; ILLEGAL MODE FOR THIS TRACK (5/64/00)
// otherwise. CD-R and CD-RW need track at once or session at once with a data track (or packet
// writing with an incremental data track) of mode 1 2048-byte blocks; DVD-R, DVD-RW in
// sequential mode and DVD-R DL need incremental or disc at once (DL also layer jump). Other
// media do not use the page and are always good.
Sense checkWriteParameters(const ModeState& mode, const Disc& disc);

}  // namespace sim::mmc

// What the hard-drive tests tell the host while a pass runs: which sector is being read and how
// long the rest will take. Internal to the library.
#pragma once

#include <cstdint>

#include "PassTiming.h"
#include "kiv/Log.h"
#include "libDrive/Drive.h"
#include "quel5/Event.h"

namespace kivrlibdrive {

// The localized string "READ_SECTOR" with "ReadSector" = `sector` and "EndSector" = `endSector`
// set. The string is the library's global: not owned, valid for the life of the process.
quel5::LocalizedString* ReadSectorText(uint64_t sector, uint64_t endSector);

// Makes a report on `timing` (MarkReported()) and tells the time left for `remainingSteps` more
// steps: seconds = timing.SecondsLeft(remainingSteps), logged as "<line>  Estimated Time Left
// <seconds>" to `logger` at priority 1 and, when the drive wants estimates
// (provideEstimatedTime()), passed to the host.
void ReportTimeLeft(Drive& drive, const kiv::Logger* logger, int line, PassTiming& timing,
                    uint64_t remainingSteps);

}  // namespace kivrlibdrive

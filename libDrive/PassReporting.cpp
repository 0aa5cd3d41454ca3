#include "PassReporting.h"

#include "kiv/String.h"
#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"
#include "quel5/Value.h"

namespace kivrlibdrive {

quel5::LocalizedString* ReadSectorText(uint64_t sector, uint64_t endSector) {
    LibDriveStrings::g_ReadSector->setVariable(L"ReadSector", quel5::Value(sector));
    LibDriveStrings::g_ReadSector->setVariable(L"EndSector", quel5::Value(endSector));
    return LibDriveStrings::g_ReadSector;
}

void ReportTimeLeft(Drive& drive, const kiv::Logger* logger, int line, PassTiming& timing,
                    uint64_t remainingSteps) {
    timing.MarkReported();
    const uint32_t seconds = timing.SecondsLeft(remainingSteps);
    logger->log(static_cast<int>(kiv::LogPriority::Detail),
                kiv::String::fromNumber(static_cast<uint64_t>(line)) + L" " +
                    L" Estimated Time Left " + kiv::String::fromNumber(seconds));
    if (drive.provideEstimatedTime()) {
        quel5::DiagModule::estimatedTimeLeft(seconds);
    }
}

}  // namespace kivrlibdrive

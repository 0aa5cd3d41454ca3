// The command families of the emulated writer; each adds its handlers to the dispatch table.
#pragma once

#include "sim/mmc/WriterState.h"

namespace sim::mmc {

// TEST UNIT READY, REQUEST SENSE, START STOP UNIT, PREVENT ALLOW MEDIUM REMOVAL,
// GET EVENT STATUS NOTIFICATION.
void addReadinessCommands(HandlerTable& table);
// INQUIRY, GET CONFIGURATION.
void addConfigurationCommands(HandlerTable& table);
// READ CAPACITY, READ DISC INFORMATION, READ TOC/PMA/ATIP.
void addDiscInformationCommands(HandlerTable& table);
// READ TRACK INFORMATION, GET PERFORMANCE (write speeds).
void addTrackCommands(HandlerTable& table);
// READ DISC STRUCTURE.
void addDiscStructureCommands(HandlerTable& table);
// MODE SENSE(10), MODE SELECT(10), SET CD SPEED.
void addModeCommands(HandlerTable& table);
// READ(10), READ(12), WRITE(10), WRITE(12), SYNCHRONIZE CACHE.
void addDataCommands(HandlerTable& table);
// BLANK, FORMAT UNIT, CLOSE TRACK/SESSION, SEND OPC INFORMATION.
void addRecordingCommands(HandlerTable& table);

}  // namespace sim::mmc

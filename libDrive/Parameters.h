// The test parameters the library publishes. The host gives them values by key before a test
// runs; the tests read them through these handles.
//
// Each handle is created when the library is loaded and owned by the framework for the life of
// the process; never delete it. No parameter carries a default: the code reading a parameter
// decides what an unset one means.
#pragma once

#include "libDrive/Export.h"
#include "quel5/Parameter.h"

namespace kivrlibdrive {

LIBDRIVE_API extern quel5::Parameter* g_bPreserveData;         // "PreserveData", BOOLEAN
LIBDRIVE_API extern quel5::Parameter* g_NumberOfPatterns;      // "NumberOfPatterns", UINT32
LIBDRIVE_API extern quel5::Parameter* g_NumberOfSeeks;         // "NumberOfSeeks", UINT32
LIBDRIVE_API extern quel5::Parameter* g_SectorPercentToTest;   // "SectorPercentToTest", PERCENT
LIBDRIVE_API extern quel5::Parameter* g_AdjustForLargeDrives;  // "AdjustForLargeDrives", BOOLEAN
LIBDRIVE_API extern quel5::Parameter* g_LargeDriveSize;        // "LargeDriveSize", UINT32 (GiB)
LIBDRIVE_API extern quel5::Parameter* g_LargeDriveStartRange;  // "LargeDriveStartRange", STRING
LIBDRIVE_API extern quel5::Parameter* g_LargeDriveEndRange;    // "LargeDriveEndRange", STRING

}  // namespace kivrlibdrive

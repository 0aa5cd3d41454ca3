// Parameters the library reads on every run but does not publish: hosts set them by key only.
// Created at load time like the published ones (see Parameters.h); not exported.
#pragma once

#include "quel5/Parameter.h"

namespace kivrlibdrive {

extern quel5::Parameter* g_MaxErrors;           // "MaxErrors", UINT32; 0 turns thresholds off
extern quel5::Parameter* g_MinErrorPercentage;  // "MinErrorPercentage", PERCENT; unset means 0
extern quel5::Parameter* g_StartRange;          // "StartRange", STRING
extern quel5::Parameter* g_EndRange;            // "EndRange", STRING

}  // namespace kivrlibdrive

// The test parameters the library publishes. The host gives them values by key before a test
// runs; the tests read them through these handles. Keys, types and order are in Vocabulary.inc.
//
// Each handle is created when the library is loaded and owned by the framework for the life of
// the process; never delete it. No parameter carries a default: the code reading a parameter
// decides what an unset one means.
#pragma once

#include "libDrive/Export.h"
#include "quel5/Parameter.h"

namespace kivrlibdrive {

#define LIBDRIVE_PUBLISHED_PARAMETER(key, global, type, range, flagA, flagB) \
    LIBDRIVE_API extern quel5::Parameter* global;
#include "libDrive/Vocabulary.inc"

}  // namespace kivrlibdrive

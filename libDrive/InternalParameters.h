// Parameters the library reads on every run but does not publish: hosts set them by key only.
// Created at load time like the published ones (see Vocabulary.inc); not exported.
#pragma once

#include "quel5/Parameter.h"

namespace kivrlibdrive {

#define LIBDRIVE_INTERNAL_PARAMETER(key, global, type, range, flagA, flagB) \
    extern quel5::Parameter* global;
#include "libDrive/Vocabulary.inc"

}  // namespace kivrlibdrive

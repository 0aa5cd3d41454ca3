#include "libDrive/LibDrive.h"

#include "quel5/DiagModule.h"

namespace kivrlibdrive {

void initLibDrive() { quel5::DiagModule::registerLibrary("libDrive"); }

}  // namespace kivrlibdrive

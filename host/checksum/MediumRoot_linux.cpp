#include "checksum/ChecksumSetup.h"

namespace host {

// A medium is found under its mount point, given with --map.
bool driveLettersAreRoots() { return false; }

}  // namespace host

#include "checksum/ChecksumSetup.h"

namespace host {

bool driveLettersAreRoots() { return true; }

}  // namespace host

#include "RegistryAccess.h"

namespace kiv::platform {

RegistryAnswer readRegistryValue(RegistryRoot, const String&, const String&, bool, String&) {
    return RegistryAnswer::Missing;
}

}  // namespace kiv::platform

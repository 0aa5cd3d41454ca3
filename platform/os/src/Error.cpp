#include "os/Error.h"

namespace os {

Error makeError(uint32_t code, const std::string& what) {
    return Error{code, what + ": " + describeError(code)};
}

}  // namespace os

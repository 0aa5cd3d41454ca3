#include "Hold.h"

namespace libStorage::detail {

std::unique_ptr<Hold> claimExclusive(os::NativeHandle handle) {
    os::OpenResult claimed = os::reopenExclusive(handle);
    if (!claimed.error.ok()) {
        return nullptr;
    }
    return std::make_unique<HandleHold>(std::move(claimed.handle));
}

}  // namespace libStorage::detail

#include "storage/ExclusiveAccess.h"

#include "Hold.h"

namespace libStorage {

struct ExclusiveAccess::Claim {
    std::unique_ptr<detail::Hold> hold;
};

ExclusiveAccess::ExclusiveAccess() : handle_(os::invalidNativeHandle()) {}

ExclusiveAccess::~ExclusiveAccess() = default;

ExclusiveAccess::ExclusiveAccess(const ExclusiveAccess& other) : handle_(other.handle_) {}

ExclusiveAccess& ExclusiveAccess::operator=(const ExclusiveAccess& other) {
    if (this != &other) {
        releaseExclusiveAccess();
        handle_ = other.handle_;
    }
    return *this;
}

void ExclusiveAccess::setHandle(os::NativeHandle handle) {
    if (handle != handle_) {
        releaseExclusiveAccess();
        handle_ = handle;
    }
}

bool ExclusiveAccess::getExclusiveAccess() {
    if (claim_) {
        return true;
    }
    if (handle_ == os::invalidNativeHandle()) {
        return false;
    }
    std::unique_ptr<detail::Hold> hold = detail::claimExclusive(handle_);
    if (!hold) {
        return false;
    }
    claim_ = std::make_unique<Claim>(Claim{std::move(hold)});
    return true;
}

void ExclusiveAccess::releaseExclusiveAccess() { claim_.reset(); }

bool ExclusiveAccess::hasExclusiveAccess() const { return claim_ != nullptr; }

}  // namespace libStorage

#include <windows.h>
// bcrypt.h needs the types of windows.h first.
#include <bcrypt.h>

#include <limits>

#include "Md5Hasher.h"

namespace kiv {

struct Md5Hasher::Impl {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
    bool ok = false;
};

namespace {
bool succeeded(NTSTATUS status) { return status >= 0; }
}  // namespace

Md5Hasher::Md5Hasher() : impl_(std::make_unique<Impl>()) {
    impl_->ok =
        succeeded(
            BCryptOpenAlgorithmProvider(&impl_->algorithm, BCRYPT_MD5_ALGORITHM, nullptr, 0)) &&
        succeeded(BCryptCreateHash(impl_->algorithm, &impl_->hash, nullptr, 0, nullptr, 0, 0));
}

Md5Hasher::~Md5Hasher() {
    if (impl_->hash) BCryptDestroyHash(impl_->hash);
    if (impl_->algorithm) BCryptCloseAlgorithmProvider(impl_->algorithm, 0);
}

bool Md5Hasher::update(const void* data, std::size_t size) {
    // BCryptHashData takes a 32-bit length; feed larger blocks in pieces.
    auto* bytes = static_cast<PUCHAR>(const_cast<void*>(data));
    while (impl_->ok && size > 0) {
        const ULONG piece = static_cast<ULONG>(
            size < std::numeric_limits<ULONG>::max() ? size : std::numeric_limits<ULONG>::max());
        impl_->ok = succeeded(BCryptHashData(impl_->hash, bytes, piece, 0));
        bytes += piece;
        size -= piece;
    }
    return impl_->ok;
}

bool Md5Hasher::finish(std::array<uint8_t, 16>& digest) {
    if (impl_->ok) {
        impl_->ok = succeeded(
            BCryptFinishHash(impl_->hash, digest.data(), static_cast<ULONG>(digest.size()), 0));
    }
    return impl_->ok;
}

}  // namespace kiv

#include <openssl/evp.h>

#include "Md5Hasher.h"

namespace kiv {

struct Md5Hasher::Impl {
    EVP_MD_CTX* context = nullptr;
    bool ok = false;
};

Md5Hasher::Md5Hasher() : impl_(std::make_unique<Impl>()) {
    impl_->context = EVP_MD_CTX_new();
    impl_->ok = impl_->context && EVP_DigestInit_ex(impl_->context, EVP_md5(), nullptr) == 1;
}

Md5Hasher::~Md5Hasher() { EVP_MD_CTX_free(impl_->context); }

bool Md5Hasher::update(const void* data, std::size_t size) {
    if (impl_->ok && size > 0) impl_->ok = EVP_DigestUpdate(impl_->context, data, size) == 1;
    return impl_->ok;
}

bool Md5Hasher::finish(std::array<uint8_t, 16>& digest) {
    unsigned int length = 0;
    if (impl_->ok) {
        impl_->ok = EVP_DigestFinal_ex(impl_->context, digest.data(), &length) == 1 &&
                    length == digest.size();
    }
    return impl_->ok;
}

}  // namespace kiv

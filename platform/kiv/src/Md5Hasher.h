// One running MD5 computation over a platform library. Implemented per platform:
// Md5Hasher_openssl.cpp (libcrypto EVP) and Md5Hasher_cng.cpp (Windows CNG).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace kiv {

class Md5Hasher {
public:
    Md5Hasher();
    ~Md5Hasher();
    Md5Hasher(const Md5Hasher&) = delete;
    Md5Hasher& operator=(const Md5Hasher&) = delete;

    // Each returns false once the platform library has failed; later calls keep failing.
    bool update(const void* data, std::size_t size);
    bool finish(std::array<uint8_t, 16>& digest);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace kiv

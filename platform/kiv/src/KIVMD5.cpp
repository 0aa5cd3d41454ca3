#include "kiv/KIVMD5.h"

#include <cstring>
#include <vector>

#include "Md5Hasher.h"
#include "kiv/Stream.h"

namespace {

kiv::CString toHex(const std::array<uint8_t, 16>& bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return kiv::CString(std::move(text));
}

constexpr std::size_t kChunkBytes = 64 * 1024;

}  // namespace

bool KIVMD5::calculateMD5HashFile(const kiv::String& path, kiv::CString& digest) {
    kiv::IFStream stream;
    if (!stream.openFile(path)) return false;
    kiv::Md5Hasher hasher;
    std::vector<char> chunk(kChunkBytes);
    std::size_t count = 0;
    do {
        count = stream.read(chunk.data(), chunk.size());
        if (!hasher.update(chunk.data(), count)) return false;
    } while (count == chunk.size());
    // A short read is either the end of the file or an error; only the end may give a digest.
    if (stream.hasFailed()) return false;
    std::array<uint8_t, 16> bytes{};
    if (!hasher.finish(bytes)) return false;
    digest = toHex(bytes);
    return true;
}

bool KIVMD5::calculateMD5Hash(const kiv::CString& data, kiv::CString& digest) {
    kiv::Md5Hasher hasher;
    std::array<uint8_t, 16> bytes{};
    if (!hasher.update(data.c_str(), std::strlen(data.c_str())) || !hasher.finish(bytes)) {
        return false;
    }
    digest = toHex(bytes);
    return true;
}

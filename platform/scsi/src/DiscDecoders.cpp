// Decoders of capacity, disc information, mode pages, disc structures and ATIP answers.
#include <cstring>

#include "AnswerLimit.h"
#include "scsi/ByteOrder.h"
#include "scsi/Decoders.h"

namespace kivscsi {
namespace {

constexpr size_t kCapacityLength = 8;
constexpr size_t kModeHeaderLength = 8;
constexpr size_t kModePageHeaderLength = 2;
constexpr size_t kWriteSpeedOffset = 28;
constexpr size_t kStructureHeaderLength = 4;
constexpr size_t kCopyProtectionTypeOffset = 4;

// Answers whose first two bytes count the bytes after them.
size_t selfSizedLimit(const uint8_t* data, size_t received) {
    return answerLimit(received, 2, readBig16(data));
}

Msf msfAt(const uint8_t* bytes) { return {bytes[0], bytes[1], bytes[2]}; }

}  // namespace

std::optional<Capacity> decodeCapacity(const uint8_t* data, size_t received) {
    if (data == nullptr || received < kCapacityLength) return std::nullopt;
    return Capacity{readBig32(data), readBig32(data + 4)};
}

std::optional<DiscInformation> decodeDiscInformation(const uint8_t* data, size_t received) {
    if (data == nullptr || received < 2) return std::nullopt;
    const size_t limit = selfSizedLimit(data, received);
    if (limit < 3) return std::nullopt;
    const auto byteAt = [&](size_t offset) -> uint8_t {
        return offset < limit ? data[offset] : uint8_t{0};
    };
    DiscInformation info;
    info.dataLength = readBig16(data);
    info.availableBytes = limit;
    info.discStatus = byteAt(2) & 0x03;
    info.lastSessionState = (byteAt(2) >> 2) & 0x03;
    info.erasable = (byteAt(2) & 0x10) != 0;
    info.firstTrack = byteAt(3);
    info.sessions = static_cast<uint16_t>((byteAt(9) << 8) | byteAt(4));
    info.firstTrackInLastSession = static_cast<uint16_t>((byteAt(10) << 8) | byteAt(5));
    info.lastTrackInLastSession = static_cast<uint16_t>((byteAt(11) << 8) | byteAt(6));
    info.backgroundFormatStatus = byteAt(7) & 0x03;
    info.discType = byteAt(8);
    return info;
}

std::optional<ModePage> findModePage(const uint8_t* data, size_t received, uint8_t pageCode) {
    if (data == nullptr || received < kModeHeaderLength) return std::nullopt;
    const size_t limit = selfSizedLimit(data, received);
    const uint8_t wanted = pageCode & 0x3F;
    size_t offset = kModeHeaderLength + readBig16(data + 6);
    while (offset < limit && limit - offset >= kModePageHeaderLength) {
        const uint8_t* page = data + offset;
        const size_t pageBytes = kModePageHeaderLength + page[1];
        if ((page[0] & 0x3F) == wanted) {
            return ModePage{wanted, page, std::min(pageBytes, limit - offset)};
        }
        offset += pageBytes;
    }
    return std::nullopt;
}

std::optional<uint16_t> decodeCurrentWriteSpeed(const ModePage& page) {
    if (page.page == nullptr || page.available < kWriteSpeedOffset + 2) return std::nullopt;
    if (page.page[1] < kWriteSpeedOffset) return std::nullopt;
    return readBig16(page.page + kWriteSpeedOffset);
}

std::string structureText(const uint8_t* data, size_t received, size_t offset, size_t count) {
    if (data == nullptr || received < kStructureHeaderLength) return {};
    const size_t limit = selfSizedLimit(data, received);
    if (offset >= limit) return {};
    const size_t usable = std::min(count, limit - offset);
    const void* zero = std::memchr(data + offset, 0, usable);
    const size_t length =
        zero != nullptr ? static_cast<size_t>(static_cast<const uint8_t*>(zero) - (data + offset))
                        : usable;
    return std::string(reinterpret_cast<const char*>(data + offset), length);
}

std::string decodeDvdManufacturerId(const uint8_t* data, size_t received) {
    return structureText(data, received, 23, 8);
}

std::string decodeDvdDiscId(const uint8_t* data, size_t received) {
    return structureText(data, received, 31, 3);
}

std::string decodeBdManufacturerId(const uint8_t* data, size_t received) {
    return structureText(data, received, 104, 6);
}

std::string decodeBdDiscId(const uint8_t* data, size_t received) {
    return structureText(data, received, 110, 3);
}

std::optional<uint8_t> decodeCopyProtectionType(const uint8_t* data, size_t received) {
    if (data == nullptr || received < kStructureHeaderLength) return std::nullopt;
    if (selfSizedLimit(data, received) <= kCopyProtectionTypeOffset) return std::nullopt;
    return data[kCopyProtectionTypeOffset];
}

std::optional<AtipTimes> decodeAtip(const uint8_t* data, size_t received) {
    constexpr size_t kLeadOutEnd = 15;
    if (data == nullptr || received < 2) return std::nullopt;
    if (selfSizedLimit(data, received) < kLeadOutEnd) return std::nullopt;
    return AtipTimes{msfAt(data + 8), msfAt(data + 12)};
}

}  // namespace kivscsi

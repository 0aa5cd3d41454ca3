// The sense a drive reports with CHECK CONDITION, and the codes the emulated writer uses.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace sim::mmc {

namespace key {
inline constexpr uint8_t kNoSense = 0x0;
inline constexpr uint8_t kNotReady = 0x2;
inline constexpr uint8_t kMediumError = 0x3;
inline constexpr uint8_t kHardwareError = 0x4;
inline constexpr uint8_t kIllegalRequest = 0x5;
inline constexpr uint8_t kUnitAttention = 0x6;
inline constexpr uint8_t kAbortedCommand = 0xB;
}  // namespace key

// (ASC << 8) | ASCQ values the writer answers with.
namespace code {
inline constexpr uint16_t kBecomingReady = 0x0401;
inline constexpr uint16_t kFormatInProgress = 0x0404;
inline constexpr uint16_t kOperationInProgress = 0x0407;
inline constexpr uint16_t kLongWriteInProgress = 0x0408;
inline constexpr uint16_t kCommunicationCrcError = 0x0803;
inline constexpr uint16_t kParameterListLengthError = 0x1A00;
inline constexpr uint16_t kInvalidOpcode = 0x2000;
inline constexpr uint16_t kLbaOutOfRange = 0x2100;
inline constexpr uint16_t kInvalidAddressForWrite = 0x2102;
inline constexpr uint16_t kInvalidFieldInCdb = 0x2400;
inline constexpr uint16_t kInvalidFieldInParameterList = 0x2600;
inline constexpr uint16_t kNotReadyToReadyChange = 0x2800;
inline constexpr uint16_t kCommandSequenceError = 0x2C00;
inline constexpr uint16_t kCannotReadIncompatibleFormat = 0x3002;
inline constexpr uint16_t kCannotWriteUnknownFormat = 0x3004;
inline constexpr uint16_t kCannotWriteIncompatibleFormat = 0x3005;
inline constexpr uint16_t kCannotFormatIncompatibleMedium = 0x3006;
inline constexpr uint16_t kSavingNotSupported = 0x3900;
inline constexpr uint16_t kNoMediumTrayClosed = 0x3A01;
inline constexpr uint16_t kNoMediumTrayOpen = 0x3A02;
inline constexpr uint16_t kRemovalPrevented = 0x5302;
inline constexpr uint16_t kNoTableOfContents = 0x5700;
inline constexpr uint16_t kIllegalModeForThisTrack = 0x6400;
}  // namespace code

struct Sense {
    uint8_t key = key::kNoSense;
    uint16_t code = 0;  // (ASC << 8) | ASCQ
    // Sense-key-specific progress of a format or blank: done fraction in 1/65536ths.
    std::optional<uint16_t> progress;

    bool good() const { return key == key::kNoSense && code == 0; }
    bool operator==(const Sense&) const = default;
};

// The sense key a drive reports together with `code` (NOT READY for ASC 04h and 3Ah, ILLEGAL
// REQUEST for command and address errors, and so on).
uint8_t senseKeyFor(uint16_t code);
// `code` with its usual sense key.
inline Sense senseOf(uint16_t code) { return Sense{senseKeyFor(code), code, std::nullopt}; }

inline constexpr size_t kFixedSenseLength = 18;
// `sense` as fixed-format (response code 70h) sense data.
std::array<uint8_t, kFixedSenseLength> fixedSenseData(const Sense& sense);

}  // namespace sim::mmc

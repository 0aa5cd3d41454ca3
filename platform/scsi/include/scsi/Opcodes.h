// Operation codes of the SCSI and MMC commands this library sends.
#pragma once

#include <cstdint>

namespace kivscsi::opcode {

inline constexpr uint8_t kTestUnitReady = 0x00;
inline constexpr uint8_t kRequestSense = 0x03;
inline constexpr uint8_t kFormatUnit = 0x04;
inline constexpr uint8_t kInquiry = 0x12;
inline constexpr uint8_t kStartStopUnit = 0x1B;
inline constexpr uint8_t kPreventAllowMediumRemoval = 0x1E;
inline constexpr uint8_t kReadCapacity = 0x25;
inline constexpr uint8_t kRead10 = 0x28;
inline constexpr uint8_t kWrite10 = 0x2A;
inline constexpr uint8_t kSynchronizeCache = 0x35;
inline constexpr uint8_t kReadTocPmaAtip = 0x43;
inline constexpr uint8_t kGetConfiguration = 0x46;
inline constexpr uint8_t kGetEventStatusNotification = 0x4A;
inline constexpr uint8_t kReadDiscInformation = 0x51;
inline constexpr uint8_t kReadTrackInformation = 0x52;
inline constexpr uint8_t kSendOpcInformation = 0x54;
inline constexpr uint8_t kModeSelect10 = 0x55;
inline constexpr uint8_t kCloseTrackSession = 0x5B;
inline constexpr uint8_t kModeSense10 = 0x5A;
inline constexpr uint8_t kBlank = 0xA1;
inline constexpr uint8_t kRead12 = 0xA8;
inline constexpr uint8_t kWrite12 = 0xAA;
inline constexpr uint8_t kGetPerformance = 0xAC;
inline constexpr uint8_t kReadDiscStructure = 0xAD;
inline constexpr uint8_t kSetCdSpeed = 0xBB;

}  // namespace kivscsi::opcode

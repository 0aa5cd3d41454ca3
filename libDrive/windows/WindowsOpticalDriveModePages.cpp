// Mode pages (write parameters 05h, capabilities 2Ah) and speeds.
#include <algorithm>
#include <cstring>

#include "OpticalDriveLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "scsi/ByteOrder.h"
#include "scsi/ModeCommands.h"

namespace kivrlibdrive {
namespace {

using kivscsi::readBig16;
using kivscsi::readBig32;
using kivscsi::writeBig16;
using kivscsi::writeBig32;

constexpr size_t kModeBufferBytes = 804;
constexpr size_t kModeHeaderBytes = 8;
constexpr int kCapabilitiesPage = 0x2A;
constexpr unsigned int kSpeedRounding = 177;  // kB/s of 1x CD
constexpr unsigned int kMaximumSpeed = 0xFFFF;
constexpr unsigned char kWritePageLength = 50;

// The MODE SENSE answer of the last getSensePage call, on any object: hosts keep the page
// pointer it returns until their next call.
uint8_t g_senseBuffer[kModeBufferBytes];

uint8_t* bytesOf(WriteParametersInfo* info) { return reinterpret_cast<uint8_t*>(info); }

}  // namespace

unsigned char* WindowsOpticalDrive::getSensePage(int pageCode) {
    ScopedTrace trace(optical::logger(), L"Get Sense Page", optical::kSource, __LINE__);
    std::memset(g_senseBuffer, 0, sizeof(g_senseBuffer));
    if (kivscsi::KIVR_GetSenseData10(scsiPath, deviceName, static_cast<uint8_t>(pageCode),
                                     g_senseBuffer, sizeof(g_senseBuffer)) != 0) {
        return nullptr;
    }
    const size_t dataLength = readBig16(g_senseBuffer);
    size_t offset = kModeHeaderBytes + readBig16(g_senseBuffer + 6);
    while (offset < dataLength + 2) {
        // A page whose header or body would lie past the buffer is a drive's lie, not a page.
        if (offset + 2 > sizeof(g_senseBuffer) ||
            offset + 2 + g_senseBuffer[offset + 1] > sizeof(g_senseBuffer)) {
            return nullptr;
        }
        if ((g_senseBuffer[offset] & 0x3F) == pageCode) {
            return &g_senseBuffer[offset];
        }
        offset += 2 + size_t{g_senseBuffer[offset + 1]};
    }
    return nullptr;
}

void WindowsOpticalDrive::parseWritePropertiesPage(unsigned char* page, int length,
                                                   WriteParametersInfo* info) {
    ScopedTrace trace(optical::logger(), L"parseWritePropertiesPage", optical::kSource, __LINE__);
    const size_t copied = std::min<size_t>(static_cast<size_t>(std::max(length, 0)), sizeof(*info));
    std::memcpy(info, page, copied);
    info->packetSize = readBig32(bytesOf(info) + offsetof(WriteParametersInfo, packetSize));
    info->audioPauseLength =
        readBig16(bytesOf(info) + offsetof(WriteParametersInfo, audioPauseLength));
}

int WindowsOpticalDrive::getWriteProperties(WriteParametersInfo* info) {
    ScopedTrace trace(optical::logger(), L"getWriteProperties", optical::kSource, __LINE__);
    unsigned char* page = getSensePage(writePageCode);
    if (page == nullptr) {
        return -1;
    }
    // The page length byte itself is the count: the page's last two bytes stay as they were.
    parseWritePropertiesPage(page, page[1], info);
    return 0;
}

void WindowsOpticalDrive::disParseWritePropertiesPage(unsigned char* out, int length,
                                                      WriteParametersInfo* info) {
    ScopedTrace trace(optical::logger(), L"disParseWritePropertiesPage", optical::kSource,
                      __LINE__);
    // PS is the drive's to report, never ours to send; SPF is kept.
    info->pageCode = static_cast<uint8_t>((writePageCode & 0x3F) | (info->pageCode & 0x40));
    info->pageLength = static_cast<uint8_t>(length);
    const uint32_t packetSize = info->packetSize;
    const uint16_t pause = info->audioPauseLength;
    writeBig32(bytesOf(info) + offsetof(WriteParametersInfo, packetSize), packetSize);
    writeBig16(bytesOf(info) + offsetof(WriteParametersInfo, audioPauseLength), pause);
    const size_t copied =
        std::min<size_t>(static_cast<size_t>(std::max(length + 2, 0)), sizeof(*info));
    std::memcpy(out, info, copied);
}

unsigned long WindowsOpticalDrive::setSensePage(unsigned char* page, unsigned char pageLength,
                                                int /*pageCode*/) {
    ScopedTrace trace(optical::logger(), L"setSensePage", optical::kSource, __LINE__);
    uint8_t list[kModeBufferBytes] = {};
    list[2] = 0x21;
    std::memcpy(list + kModeHeaderBytes, page, size_t{pageLength} + 2);
    return kivscsi::KIVR_SetSenseData10(scsiPath, deviceName, 0, list,
                                        static_cast<uint16_t>(pageLength + kModeHeaderBytes + 2));
}

unsigned long WindowsOpticalDrive::setWriteProperties(WriteParametersInfo* info) {
    ScopedTrace trace(optical::logger(), L"setWriteProperties", optical::kSource, __LINE__);
    unsigned char page[sizeof(WriteParametersInfo)] = {};
    disParseWritePropertiesPage(page, kWritePageLength, info);
    return setSensePage(page, kWritePageLength, writePageCode);
}

kiv::Array<unsigned int> WindowsOpticalDrive::getSupportedWriteSpeeds() {
    if (speedsReported) {
        return {};
    }
    speedsReported = true;
    return {kMaximumSpeed};
}

void WindowsOpticalDrive::setSpeed(unsigned int speed) {
    const auto kilobytes = static_cast<uint16_t>(speed);
    if (kivscsi::KIVR_SetCDSpeed(scsiPath, deviceName, kilobytes, kilobytes) != 0) {
        throw TestFailedException(kiv::String(L"Failed to set the drive speed to 0xFFFF"));
    }
}

unsigned int WindowsOpticalDrive::getCurrentWriteSpeed() {
    const unsigned char* page = getSensePage(kCapabilitiesPage);
    if (page == nullptr || page[1] < 28) {
        return 0;
    }
    // Bytes 28-29: the write speed selected, in kB/s.
    const unsigned int selected = readBig16(page + 28);
    return (selected + kSpeedRounding - 1) / kSpeedRounding * kSpeedRounding;
}

}  // namespace kivrlibdrive

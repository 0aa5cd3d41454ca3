// Closing a track or session and stopping a background format.
#include "libDrive/Exceptions.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "scsi/RecordingCommands.h"

namespace kivrlibdrive {
namespace {

constexpr uint8_t kCloseTrackFunction = 1;
// Closing the session for good, for hosts that test only blank media.
constexpr uint8_t kCloseSessionFunction = 2;
constexpr uint8_t kStopBackgroundFormat = 0;

}  // namespace

void WindowsOpticalDrive::closeTrack(unsigned long long /*track*/) {
    const kivscsi::Status status = kivscsi::CloseTrack(scsiPath, deviceName);
    if (status != 0) {
        throw FailedClosingTrack(status);
    }
}

void WindowsOpticalDrive::closeSession() {
    const quel5::DeviceProperty* blankOnly = device->property(L"BlankMediaOnly");
    const bool closeForGood = blankOnly != nullptr && blankOnly->value().valueBool();
    const kivscsi::Status status = kivscsi::CloseFirstSession(
        scsiPath, deviceName, closeForGood ? kCloseSessionFunction : kCloseTrackFunction);
    if (status != 0) {
        throw FailedClosingSession(status);
    }
}

void WindowsOpticalDrive::stopBackGroundFormatting() {
    const kivscsi::Status status =
        kivscsi::CloseTrackSession(scsiPath, deviceName, kStopBackgroundFormat, 0, false);
    if (status != 0) {
        throw FailedStoppingBGFormat(status);
    }
}

}  // namespace kivrlibdrive

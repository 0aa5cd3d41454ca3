#include "libDrive/Exceptions.h"

namespace kivrlibdrive {

InvalidDrive::InvalidDrive(const kiv::String& detail)
    : kiv::Exception(kiv::String(L"Invalid Drive : ") + detail) {}
InvalidDrive::~InvalidDrive() = default;

InvalidHandle::InvalidHandle(const kiv::String& detail)
    : kiv::Exception(kiv::String(L"Invalid Handle : ") + detail) {}
InvalidHandle::~InvalidHandle() = default;

InvalidSector::InvalidSector(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Invalid Sector: ") + detail) {}
InvalidSector::~InvalidSector() = default;

InvalidRange::InvalidRange(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Invalid Range: ") + detail) {}
InvalidRange::~InvalidRange() = default;

InvalidBufferSize::InvalidBufferSize(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Invalid Buffer Size: ") + detail) {}
InvalidBufferSize::~InvalidBufferSize() = default;

InvalidDriveGeometry::InvalidDriveGeometry(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Invalid Drive Geometry: ") + detail) {}
InvalidDriveGeometry::~InvalidDriveGeometry() = default;

InvalidTestInitialization::InvalidTestInitialization(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Invalid Test Initialization: ") + detail) {}
InvalidTestInitialization::~InvalidTestInitialization() = default;

WindowsDriveError::WindowsDriveError(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Drive Error: ") + detail) {}
WindowsDriveError::~WindowsDriveError() = default;

InvalidPattern::InvalidPattern(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Invalid Pattern: ") + detail) {}
InvalidPattern::~InvalidPattern() = default;

SectorReadFailure::SectorReadFailure(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Sector Read Failure: ") + detail) {}
SectorReadFailure::~SectorReadFailure() = default;

SectorWriteFailure::SectorWriteFailure(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Sector Write Failure: ") + detail) {}
SectorWriteFailure::~SectorWriteFailure() = default;

SectorSeekFailure::SectorSeekFailure(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Sector Seek Failure: ") + detail) {}
SectorSeekFailure::~SectorSeekFailure() = default;

DriveError::DriveError(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Drive Failure: ") + detail) {}
DriveError::~DriveError() = default;

MediaWriteProtected::MediaWriteProtected(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Write protected media: ") + detail) {}
MediaWriteProtected::~MediaWriteProtected() = default;

UnknownError::UnknownError(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" Unknown Error: ") + detail) {}
UnknownError::~UnknownError() = default;

NoMediaPresent::NoMediaPresent(const kiv::String& detail)
    : kiv::Exception(kiv::String(L" No media present: ") + detail) {}
NoMediaPresent::~NoMediaPresent() = default;

UserAborted::UserAborted(kiv::String text) : kiv::Exception(text) {}
UserAborted::~UserAborted() = default;

InternalException::InternalException(kiv::String text) : kiv::Exception(text) {}
InternalException::~InternalException() = default;

EjectError::EjectError(kiv::String text) : kiv::Exception(text), status(0) {}
EjectError::EjectError(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
EjectError::~EjectError() = default;

TestFailedException::TestFailedException(kiv::String text) : kiv::Exception(text), status(0) {}
TestFailedException::TestFailedException(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
TestFailedException::~TestFailedException() = default;

InvalidMediaException::InvalidMediaException(kiv::String text) : kiv::Exception(text) {}
InvalidMediaException::~InvalidMediaException() = default;

FailedRetrivingADIPInfo::FailedRetrivingADIPInfo(kiv::String text) : kiv::Exception(text) {}
FailedRetrivingADIPInfo::~FailedRetrivingADIPInfo() = default;

FailedReadingTrackInformation::FailedReadingTrackInformation(kiv::String text)
    : kiv::Exception(text), status(0) {}
FailedReadingTrackInformation::FailedReadingTrackInformation(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
FailedReadingTrackInformation::~FailedReadingTrackInformation() = default;

FailedSettingDriveSpeed::FailedSettingDriveSpeed(kiv::String text)
    : kiv::Exception(text), desiredSpeed(0), actualSpeed(0) {}
FailedSettingDriveSpeed::FailedSettingDriveSpeed(unsigned int desired, unsigned int actual)
    : kiv::Exception(kiv::String()), desiredSpeed(desired), actualSpeed(actual) {}
FailedSettingDriveSpeed::~FailedSettingDriveSpeed() = default;

WriteFailedException::WriteFailedException(kiv::String text)
    : kiv::Exception(text), sectorNumber(0), errorCode(0) {}
WriteFailedException::WriteFailedException(uint64_t sector, unsigned int code)
    : kiv::Exception(kiv::String()), sectorNumber(sector), errorCode(code) {}
WriteFailedException::~WriteFailedException() = default;

ReadFailedException::ReadFailedException(kiv::String text)
    : kiv::Exception(text), sectorNumber(0), errorCode(0) {}
ReadFailedException::ReadFailedException(uint64_t sector, unsigned int code)
    : kiv::Exception(kiv::String()), sectorNumber(sector), errorCode(code) {}
ReadFailedException::~ReadFailedException() = default;

FailedRetrivingATIPInfo::FailedRetrivingATIPInfo(kiv::String text)
    : kiv::Exception(text), status(0) {}
FailedRetrivingATIPInfo::FailedRetrivingATIPInfo(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
FailedRetrivingATIPInfo::~FailedRetrivingATIPInfo() = default;

FailedClosingTrack::FailedClosingTrack(kiv::String text) : kiv::Exception(text), status(0) {}
FailedClosingTrack::FailedClosingTrack(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
FailedClosingTrack::~FailedClosingTrack() = default;

FailedClosingSession::FailedClosingSession(kiv::String text) : kiv::Exception(text), status(0) {}
FailedClosingSession::FailedClosingSession(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
FailedClosingSession::~FailedClosingSession() = default;

FailedStoppingBGFormat::FailedStoppingBGFormat(kiv::String text)
    : kiv::Exception(text), status(0) {}
FailedStoppingBGFormat::FailedStoppingBGFormat(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
FailedStoppingBGFormat::~FailedStoppingBGFormat() = default;

PromptDisabled::PromptDisabled(kiv::String text) : kiv::Exception(text) {}
PromptDisabled::~PromptDisabled() = default;

CannotRun::CannotRun(kiv::String text) : kiv::Exception(text) {}
CannotRun::~CannotRun() = default;

FailedGettingCurrentProfile::FailedGettingCurrentProfile(kiv::String text)
    : kiv::Exception(text), status(0) {}
FailedGettingCurrentProfile::FailedGettingCurrentProfile(unsigned int statusCode)
    : kiv::Exception(kiv::String()), status(statusCode) {}
FailedGettingCurrentProfile::~FailedGettingCurrentProfile() = default;

WrongMediaTypeReturned::WrongMediaTypeReturned(kiv::String text) : kiv::Exception(text) {}
WrongMediaTypeReturned::~WrongMediaTypeReturned() = default;

TimedOutException::TimedOutException(const kiv::String& text) : kiv::Exception(text) {}
TimedOutException::~TimedOutException() = default;

}  // namespace kivrlibdrive

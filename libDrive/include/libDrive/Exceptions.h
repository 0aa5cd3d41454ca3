// The library's exception types. Each derives directly from kiv::Exception, whose getMessage()
// returns the message described above the class. Hosts may catch any of them by type; several
// are published for hosts and later libraries although this library never throws them.
//
// Numbers stored by the code constructors are for the catcher to format; a class built from text
// leaves its numbers at 0.
#pragma once

#include <cstdint>

#include "kiv/Exception.h"
#include "kiv/String.h"
#include "libDrive/Export.h"

namespace kivrlibdrive {

// Message: "Invalid Drive : " followed by the detail.
class LIBDRIVE_API InvalidDrive : public kiv::Exception {
public:
    explicit InvalidDrive(const kiv::String& detail);
    InvalidDrive(const InvalidDrive&) = default;
    InvalidDrive& operator=(const InvalidDrive&) = default;
    ~InvalidDrive() override;
};

// Message: "Invalid Handle : " followed by the detail.
class LIBDRIVE_API InvalidHandle : public kiv::Exception {
public:
    explicit InvalidHandle(const kiv::String& detail);
    InvalidHandle(const InvalidHandle&) = default;
    InvalidHandle& operator=(const InvalidHandle&) = default;
    ~InvalidHandle() override;
};

// Message: " Invalid Sector: " followed by the detail.
class LIBDRIVE_API InvalidSector : public kiv::Exception {
public:
    explicit InvalidSector(const kiv::String& detail);
    InvalidSector(const InvalidSector&) = default;
    InvalidSector& operator=(const InvalidSector&) = default;
    ~InvalidSector() override;
};

// Message: " Invalid Range: " followed by the detail.
class LIBDRIVE_API InvalidRange : public kiv::Exception {
public:
    explicit InvalidRange(const kiv::String& detail);
    InvalidRange(const InvalidRange&) = default;
    InvalidRange& operator=(const InvalidRange&) = default;
    ~InvalidRange() override;
};

// Message: " Invalid Buffer Size: " followed by the detail.
class LIBDRIVE_API InvalidBufferSize : public kiv::Exception {
public:
    explicit InvalidBufferSize(const kiv::String& detail);
    InvalidBufferSize(const InvalidBufferSize&) = default;
    InvalidBufferSize& operator=(const InvalidBufferSize&) = default;
    ~InvalidBufferSize() override;
};

// Message: " Invalid Drive Geometry: " followed by the detail.
class LIBDRIVE_API InvalidDriveGeometry : public kiv::Exception {
public:
    explicit InvalidDriveGeometry(const kiv::String& detail);
    InvalidDriveGeometry(const InvalidDriveGeometry&) = default;
    InvalidDriveGeometry& operator=(const InvalidDriveGeometry&) = default;
    ~InvalidDriveGeometry() override;
};

// Message: " Invalid Test Initialization: " followed by the detail.
class LIBDRIVE_API InvalidTestInitialization : public kiv::Exception {
public:
    explicit InvalidTestInitialization(const kiv::String& detail);
    InvalidTestInitialization(const InvalidTestInitialization&) = default;
    InvalidTestInitialization& operator=(const InvalidTestInitialization&) = default;
    ~InvalidTestInitialization() override;
};

// Message: " Drive Error: " followed by the detail.
class LIBDRIVE_API WindowsDriveError : public kiv::Exception {
public:
    explicit WindowsDriveError(const kiv::String& detail);
    WindowsDriveError(const WindowsDriveError&) = default;
    WindowsDriveError& operator=(const WindowsDriveError&) = default;
    ~WindowsDriveError() override;
};

// Message: " Invalid Pattern: " followed by the detail.
class LIBDRIVE_API InvalidPattern : public kiv::Exception {
public:
    explicit InvalidPattern(const kiv::String& detail);
    InvalidPattern(const InvalidPattern&) = default;
    InvalidPattern& operator=(const InvalidPattern&) = default;
    ~InvalidPattern() override;
};

// Message: " Sector Read Failure: " followed by the detail.
class LIBDRIVE_API SectorReadFailure : public kiv::Exception {
public:
    explicit SectorReadFailure(const kiv::String& detail);
    SectorReadFailure(const SectorReadFailure&) = default;
    SectorReadFailure& operator=(const SectorReadFailure&) = default;
    ~SectorReadFailure() override;
};

// Message: " Sector Write Failure: " followed by the detail.
class LIBDRIVE_API SectorWriteFailure : public kiv::Exception {
public:
    explicit SectorWriteFailure(const kiv::String& detail);
    SectorWriteFailure(const SectorWriteFailure&) = default;
    SectorWriteFailure& operator=(const SectorWriteFailure&) = default;
    ~SectorWriteFailure() override;
};

// Message: " Sector Seek Failure: " followed by the detail.
class LIBDRIVE_API SectorSeekFailure : public kiv::Exception {
public:
    explicit SectorSeekFailure(const kiv::String& detail);
    SectorSeekFailure(const SectorSeekFailure&) = default;
    SectorSeekFailure& operator=(const SectorSeekFailure&) = default;
    ~SectorSeekFailure() override;
};

// Message: " Drive Failure: " followed by the detail.
class LIBDRIVE_API DriveError : public kiv::Exception {
public:
    explicit DriveError(const kiv::String& detail);
    DriveError(const DriveError&) = default;
    DriveError& operator=(const DriveError&) = default;
    ~DriveError() override;
};

// Message: " Write protected media: " followed by the detail.
class LIBDRIVE_API MediaWriteProtected : public kiv::Exception {
public:
    explicit MediaWriteProtected(const kiv::String& detail);
    MediaWriteProtected(const MediaWriteProtected&) = default;
    MediaWriteProtected& operator=(const MediaWriteProtected&) = default;
    ~MediaWriteProtected() override;
};

// Message: " Unknown Error: " followed by the detail.
class LIBDRIVE_API UnknownError : public kiv::Exception {
public:
    explicit UnknownError(const kiv::String& detail);
    UnknownError(const UnknownError&) = default;
    UnknownError& operator=(const UnknownError&) = default;
    ~UnknownError() override;
};

// Message: " No media present: " followed by the detail.
class LIBDRIVE_API NoMediaPresent : public kiv::Exception {
public:
    explicit NoMediaPresent(const kiv::String& detail);
    NoMediaPresent(const NoMediaPresent&) = default;
    NoMediaPresent& operator=(const NoMediaPresent&) = default;
    ~NoMediaPresent() override;
};

// Message: the text as given.
class LIBDRIVE_API UserAborted : public kiv::Exception {
public:
    explicit UserAborted(kiv::String text);
    UserAborted(const UserAborted&) = default;
    UserAborted& operator=(const UserAborted&) = default;
    ~UserAborted() override;
};

// Message: the text as given.
class LIBDRIVE_API InternalException : public kiv::Exception {
public:
    explicit InternalException(kiv::String text);
    InternalException(const InternalException&) = default;
    InternalException& operator=(const InternalException&) = default;
    ~InternalException() override;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure).
class LIBDRIVE_API EjectError : public kiv::Exception {
public:
    explicit EjectError(kiv::String text);
    explicit EjectError(unsigned int statusCode);
    EjectError(const EjectError&) = default;
    EjectError& operator=(const EjectError&) = default;
    ~EjectError() override;

    unsigned int getStatus() const { return status; }

private:
    unsigned int status;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure).
class LIBDRIVE_API TestFailedException : public kiv::Exception {
public:
    explicit TestFailedException(kiv::String text);
    explicit TestFailedException(unsigned int statusCode);
    TestFailedException(const TestFailedException&) = default;
    TestFailedException& operator=(const TestFailedException&) = default;
    ~TestFailedException() override;

    unsigned int getStatus() const { return status; }

private:
    unsigned int status;
};

// Message: the text as given.
class LIBDRIVE_API InvalidMediaException : public kiv::Exception {
public:
    explicit InvalidMediaException(kiv::String text);
    InvalidMediaException(const InvalidMediaException&) = default;
    InvalidMediaException& operator=(const InvalidMediaException&) = default;
    ~InvalidMediaException() override;
};

// Message: the text as given.
class LIBDRIVE_API FailedRetrivingADIPInfo : public kiv::Exception {
public:
    explicit FailedRetrivingADIPInfo(kiv::String text);
    FailedRetrivingADIPInfo(const FailedRetrivingADIPInfo&) = default;
    FailedRetrivingADIPInfo& operator=(const FailedRetrivingADIPInfo&) = default;
    ~FailedRetrivingADIPInfo() override;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure), which is kept but not published.
class LIBDRIVE_API FailedReadingTrackInformation : public kiv::Exception {
public:
    explicit FailedReadingTrackInformation(kiv::String text);
    explicit FailedReadingTrackInformation(unsigned int statusCode);
    FailedReadingTrackInformation(const FailedReadingTrackInformation&) = default;
    FailedReadingTrackInformation& operator=(const FailedReadingTrackInformation&) = default;
    ~FailedReadingTrackInformation() override;

private:
    [[maybe_unused]] unsigned int status;
};

// Message: the text given, or empty when built from the speeds the drive was asked for and
// reached.
class LIBDRIVE_API FailedSettingDriveSpeed : public kiv::Exception {
public:
    explicit FailedSettingDriveSpeed(kiv::String text);
    FailedSettingDriveSpeed(unsigned int desired, unsigned int actual);
    FailedSettingDriveSpeed(const FailedSettingDriveSpeed&) = default;
    FailedSettingDriveSpeed& operator=(const FailedSettingDriveSpeed&) = default;
    ~FailedSettingDriveSpeed() override;

    unsigned int getDesiredSpeed() const { return desiredSpeed; }
    unsigned int getActualSpeed() const { return actualSpeed; }

private:
    unsigned int desiredSpeed;
    unsigned int actualSpeed;
};

// Message: the text given, or empty when built from the failing sector and the drive's error
// code.
class LIBDRIVE_API WriteFailedException : public kiv::Exception {
public:
    explicit WriteFailedException(kiv::String text);
    WriteFailedException(uint64_t sector, unsigned int code);
    WriteFailedException(const WriteFailedException&) = default;
    WriteFailedException& operator=(const WriteFailedException&) = default;
    ~WriteFailedException() override;

    uint64_t getSectorNumber() const { return sectorNumber; }
    unsigned int getErrorCode() const { return errorCode; }

private:
    uint64_t sectorNumber;
    unsigned int errorCode;
};

// Message: the text given, or empty when built from the failing sector and the drive's error
// code.
class LIBDRIVE_API ReadFailedException : public kiv::Exception {
public:
    explicit ReadFailedException(kiv::String text);
    ReadFailedException(uint64_t sector, unsigned int code);
    ReadFailedException(const ReadFailedException&) = default;
    ReadFailedException& operator=(const ReadFailedException&) = default;
    ~ReadFailedException() override;

    uint64_t getSectorNumber() const { return sectorNumber; }
    unsigned int getErrorCode() const { return errorCode; }

private:
    uint64_t sectorNumber;
    unsigned int errorCode;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure).
class LIBDRIVE_API FailedRetrivingATIPInfo : public kiv::Exception {
public:
    explicit FailedRetrivingATIPInfo(kiv::String text);
    explicit FailedRetrivingATIPInfo(unsigned int statusCode);
    FailedRetrivingATIPInfo(const FailedRetrivingATIPInfo&) = default;
    FailedRetrivingATIPInfo& operator=(const FailedRetrivingATIPInfo&) = default;
    ~FailedRetrivingATIPInfo() override;

    unsigned int getStatus() const { return status; }

private:
    unsigned int status;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure).
class LIBDRIVE_API FailedClosingTrack : public kiv::Exception {
public:
    explicit FailedClosingTrack(kiv::String text);
    explicit FailedClosingTrack(unsigned int statusCode);
    FailedClosingTrack(const FailedClosingTrack&) = default;
    FailedClosingTrack& operator=(const FailedClosingTrack&) = default;
    ~FailedClosingTrack() override;

    unsigned int getStatus() const { return status; }

private:
    unsigned int status;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure).
class LIBDRIVE_API FailedClosingSession : public kiv::Exception {
public:
    explicit FailedClosingSession(kiv::String text);
    explicit FailedClosingSession(unsigned int statusCode);
    FailedClosingSession(const FailedClosingSession&) = default;
    FailedClosingSession& operator=(const FailedClosingSession&) = default;
    ~FailedClosingSession() override;

    unsigned int getStatus() const { return status; }

private:
    unsigned int status;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure).
class LIBDRIVE_API FailedStoppingBGFormat : public kiv::Exception {
public:
    explicit FailedStoppingBGFormat(kiv::String text);
    explicit FailedStoppingBGFormat(unsigned int statusCode);
    FailedStoppingBGFormat(const FailedStoppingBGFormat&) = default;
    FailedStoppingBGFormat& operator=(const FailedStoppingBGFormat&) = default;
    ~FailedStoppingBGFormat() override;

    unsigned int getStatus() const { return status; }

private:
    unsigned int status;
};

// Message: the text as given.
class LIBDRIVE_API PromptDisabled : public kiv::Exception {
public:
    explicit PromptDisabled(kiv::String text);
    PromptDisabled(const PromptDisabled&) = default;
    PromptDisabled& operator=(const PromptDisabled&) = default;
    ~PromptDisabled() override;
};

// Message: the text as given.
class LIBDRIVE_API CannotRun : public kiv::Exception {
public:
    explicit CannotRun(kiv::String text);
    CannotRun(const CannotRun&) = default;
    CannotRun& operator=(const CannotRun&) = default;
    ~CannotRun() override;
};

// Message: the text given, or empty when built from the status (the SCSI or drive status that
// caused the failure).
class LIBDRIVE_API FailedGettingCurrentProfile : public kiv::Exception {
public:
    explicit FailedGettingCurrentProfile(kiv::String text);
    explicit FailedGettingCurrentProfile(unsigned int statusCode);
    FailedGettingCurrentProfile(const FailedGettingCurrentProfile&) = default;
    FailedGettingCurrentProfile& operator=(const FailedGettingCurrentProfile&) = default;
    ~FailedGettingCurrentProfile() override;

    unsigned int getStatus() const { return status; }

private:
    unsigned int status;
};

// Message: the text as given.
class LIBDRIVE_API WrongMediaTypeReturned : public kiv::Exception {
public:
    explicit WrongMediaTypeReturned(kiv::String text);
    WrongMediaTypeReturned(const WrongMediaTypeReturned&) = default;
    WrongMediaTypeReturned& operator=(const WrongMediaTypeReturned&) = default;
    ~WrongMediaTypeReturned() override;
};

// Message: the text as given.
class LIBDRIVE_API TimedOutException : public kiv::Exception {
public:
    explicit TimedOutException(const kiv::String& text);
    TimedOutException(const TimedOutException&) = default;
    TimedOutException& operator=(const TimedOutException&) = default;
    ~TimedOutException() override;
};

}  // namespace kivrlibdrive

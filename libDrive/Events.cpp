// The event handles and the load-time calls that create them, in the order the host's
// catalogue lists them.
#include "libDrive/LibDriveStrings.h"
#include "libDrive/VocabularyCreation.h"
#include "quel5/DiagModule.h"

quel5::Event* LibDriveStrings::g_usagesLeftEvent = nullptr;
quel5::Event* LibDriveStrings::g_harddrivepasswordprotected = nullptr;
quel5::Event* LibDriveStrings::g_eventTestFailedOnNonQualMedia = nullptr;
quel5::Event* LibDriveStrings::g_eventPromptingDisabled = nullptr;
quel5::Event* LibDriveStrings::g_invalidParameterEvent = nullptr;
quel5::Event* LibDriveStrings::g_maxUsageLimitReached = nullptr;
quel5::Event* LibDriveStrings::g_checkingDiscUsageValue = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventUnableToGetDriveGeometry = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventEndRangeGreaterThanStartRange = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventEndRangeSmallerThanTotalSectors = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventTotalSectorsGreaterThanDifference = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventInternalError = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventInvalidBufferSize = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventInvalidBuffer = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventMemoryAllocationError = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventBytesPerSectorThanZero = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventSectorsPerTrackThanZero = nullptr;
quel5::Event* LibDriveStrings::g_errorEventIOSeekFailure = nullptr;
quel5::Event* LibDriveStrings::g_errorEventIOReadFailure = nullptr;
quel5::Event* LibDriveStrings::g_errorEventIOWriteFailure = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventInvalidDriveHandle = nullptr;
quel5::Event* LibDriveStrings::g_InvalidSectorPercentToTestValue = nullptr;
quel5::Event* LibDriveStrings::g_InvalidNumberOfSeeksValue = nullptr;
quel5::Event* LibDriveStrings::g_errorEventDataCompareFailed = nullptr;
quel5::Event* LibDriveStrings::g_errorEventMaxErrorsExceeded = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventUnableToRestoreSector = nullptr;
quel5::Event* LibDriveStrings::g_errorEventPatternMismatchError = nullptr;
quel5::Event* LibDriveStrings::g_warnEventUnableToGetDriveLetter = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventSystemDrive = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventTestAborted = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventNoMediaPresent = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventMediaIsWriteProtected = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventDriveIOReadTimeout = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventDriveIOReadFailure = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventDriveScsiWriteFailure = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventDriveIOMediaNotPresent = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventDriveErrorStartingDrive = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventDriveErrorStartingOpticalDrive = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventDriveIOReadTOCFailure = nullptr;
quel5::Event* LibDriveStrings::g_TestCancelledNoMedia = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEjectingMedia = nullptr;
quel5::Event* LibDriveStrings::g_ErrorStartingDrive = nullptr;
quel5::Event* LibDriveStrings::g_WarningNoMedia = nullptr;
quel5::Event* LibDriveStrings::g_WarningNotEnoughDataOnDisc = nullptr;
quel5::Event* LibDriveStrings::g_EventIncorrectMediaInserted = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventEncryptedDVDMedia = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventPassedWithErrors = nullptr;
quel5::Event* LibDriveStrings::g_WarnEventFailedThreshold = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventCheckingDiscCapability = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventFormattingMedia = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventErasingMedia = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventSynchronizingCache = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventSettingSpeed = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventGettingDriveSpeed = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventSpeedNotReached = nullptr;
quel5::Event* LibDriveStrings::g_ErrorEventClosingMedia = nullptr;
quel5::Event* LibDriveStrings::g_EventMediaFull = nullptr;
quel5::Event* LibDriveStrings::g_EventDiscNotEmpty = nullptr;
quel5::Event* LibDriveStrings::g_EventDiscClosed = nullptr;
quel5::Event* LibDriveStrings::g_EventWrongMediaReturned = nullptr;
quel5::Event* LibDriveStrings::g_EventInvalidLRA = nullptr;
quel5::Event* LibDriveStrings::g_EventCurrentProfileNotSet = nullptr;
quel5::Event* LibDriveStrings::g_EventSupportedCommandError = nullptr;
quel5::Event* LibDriveStrings::g_EventRerunTest = nullptr;
quel5::Event* LibDriveStrings::g_EventCommunicationCRCError = nullptr;
quel5::Event* LibDriveStrings::g_EventReadWriteTestReadFailure = nullptr;
quel5::Event* LibDriveStrings::g_EventLongWriteInProgress = nullptr;
quel5::Event* LibDriveStrings::Event_DeviceBusy = nullptr;
quel5::Event* LibDriveStrings::g_errorFileOpenFail = nullptr;
quel5::Event* LibDriveStrings::g_errorRetrievingFileSize = nullptr;
quel5::Event* LibDriveStrings::g_errorSettingFilePointer = nullptr;
quel5::Event* LibDriveStrings::g_warnNoDataFoundInChecksumFile = nullptr;
quel5::Event* LibDriveStrings::g_errorChecksumFail = nullptr;

namespace kivrlibdrive::detail {

void createEvents() {
    using quel5::DiagModule;
    LibDriveStrings::g_usagesLeftEvent = DiagModule::createEvent("CURRENT_USAGE_VALUE");
    LibDriveStrings::g_harddrivepasswordprotected =
        DiagModule::createEvent("HardDrive_PasswordProtected");
    LibDriveStrings::g_eventTestFailedOnNonQualMedia =
        DiagModule::createEvent("TestFailedOnNonQualMedia");
    LibDriveStrings::g_eventPromptingDisabled = DiagModule::createEvent("PromptingDisabled");
    LibDriveStrings::g_invalidParameterEvent = DiagModule::createEvent("InvalidRangeEntry");
    LibDriveStrings::g_maxUsageLimitReached = DiagModule::createEvent("MAX_USAGE_LIMIT_REACHED");
    LibDriveStrings::g_checkingDiscUsageValue =
        DiagModule::createEvent("CHECKING_DISC_MAX_USAGE_LIMIT");
    LibDriveStrings::g_WarnEventUnableToGetDriveGeometry =
        DiagModule::createEvent("UNABLE_TO_GET_DRIVE_GEOMETRY");
    LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero =
        DiagModule::createEvent("TOTAL_SECTOR_GREATER_THAN_ZERO");
    LibDriveStrings::g_WarnEventEndRangeGreaterThanStartRange =
        DiagModule::createEvent("END_RANGE_GREATER_THAN_START_RANGE");
    LibDriveStrings::g_WarnEventEndRangeSmallerThanTotalSectors =
        DiagModule::createEvent("END_RANGE_SMALLER_THAN_TOTAL_SECTORS");
    LibDriveStrings::g_WarnEventTotalSectorsGreaterThanDifference =
        DiagModule::createEvent("TOTAL_SECTORS_GREATER_THAN_DIFFERENCE");
    LibDriveStrings::g_WarnEventInternalError = DiagModule::createEvent("INTERNAL_ERROR");
    LibDriveStrings::g_WarnEventInvalidBufferSize = DiagModule::createEvent("INVALID_BUFFER_SIZE");
    LibDriveStrings::g_WarnEventInvalidBuffer = DiagModule::createEvent("INVALID_BUFFER");
    LibDriveStrings::g_WarnEventMemoryAllocationError =
        DiagModule::createEvent("MSG_ERROR_ALLOCATING_MEMORY");
    LibDriveStrings::g_WarnEventBytesPerSectorThanZero =
        DiagModule::createEvent("BYTES_PER_SECTOR_GREATER_THAN_ZERO");
    LibDriveStrings::g_WarnEventSectorsPerTrackThanZero =
        DiagModule::createEvent("SECTORS_PER_TRACK_GREATER_THAN_ZERO");
    LibDriveStrings::g_errorEventIOSeekFailure = DiagModule::createEvent("IO_SEEK_FAILURE");
    LibDriveStrings::g_errorEventIOReadFailure = DiagModule::createEvent("IO_READ_FAILURE");
    LibDriveStrings::g_errorEventIOWriteFailure = DiagModule::createEvent("IO_WRITE_FAILURE");
    LibDriveStrings::g_WarnEventInvalidDriveHandle =
        DiagModule::createEvent("INVALID_DRIVE_HANDLE");
    LibDriveStrings::g_InvalidSectorPercentToTestValue =
        DiagModule::createEvent("InvalidSectorPercentToTestValue");
    LibDriveStrings::g_InvalidNumberOfSeeksValue =
        DiagModule::createEvent("InvalidNumberOfSeeksValue");
    LibDriveStrings::g_errorEventDataCompareFailed = DiagModule::createEvent("DATA_COMPARE_FAILED");
    LibDriveStrings::g_errorEventMaxErrorsExceeded = DiagModule::createEvent("MAX_ERRORS_EXCEEDED");
    LibDriveStrings::g_WarnEventUnableToRestoreSector =
        DiagModule::createEvent("UNABLE_TO_RESTORE_SECTOR");
    LibDriveStrings::g_errorEventPatternMismatchError =
        DiagModule::createEvent("MSG_PATTERN_MISMATCH_ERROR");
    LibDriveStrings::g_warnEventUnableToGetDriveLetter =
        DiagModule::createEvent("UNABLE_TO_GET_DRIVE_LETTER");
    LibDriveStrings::g_WarnEventSystemDrive = DiagModule::createEvent("SYSTEM_DRIVE");
    LibDriveStrings::g_WarnEventTestAborted = DiagModule::createEvent("TEST_ABORTED");
    LibDriveStrings::g_WarnEventNoMediaPresent = DiagModule::createEvent("NO_MEDIA_PRESENT");
    LibDriveStrings::g_WarnEventMediaIsWriteProtected =
        DiagModule::createEvent("MEDIA_IS_WRITE_PROTECTED");
    LibDriveStrings::g_WarnEventDriveIOReadTimeout =
        DiagModule::createEvent("DRIVE_IO_READ_TIMEOUT");
    LibDriveStrings::g_ErrorEventDriveIOReadFailure =
        DiagModule::createEvent("DRIVE_IO_READ_FAILURE");
    LibDriveStrings::g_ErrorEventDriveScsiWriteFailure =
        DiagModule::createEvent("DRIVE_SCSI_WRITE_FAILURE");
    LibDriveStrings::g_WarnEventDriveIOMediaNotPresent =
        DiagModule::createEvent("DRIVE_IO_MEDIA_NOT_PRESENT");
    LibDriveStrings::g_ErrorEventDriveErrorStartingDrive =
        DiagModule::createEvent("DRIVE_ERROR_STARTING_DRIVE");
    LibDriveStrings::g_ErrorEventDriveErrorStartingOpticalDrive =
        DiagModule::createEvent("DRIVE_ERROR_STARTING_OPTICAL_DRIVE");
    LibDriveStrings::g_ErrorEventDriveIOReadTOCFailure =
        DiagModule::createEvent("DRIVE_IO_READ_TOC_FAILURE");
    LibDriveStrings::g_TestCancelledNoMedia = DiagModule::createEvent("TEST_CANCELLED_NO_MEDIA");
    LibDriveStrings::g_ErrorEjectingMedia = DiagModule::createEvent("ERROR_EJECTING_MEDIA");
    LibDriveStrings::g_ErrorStartingDrive = DiagModule::createEvent("ERROR_STARTING_DRIVE");
    LibDriveStrings::g_WarningNoMedia = DiagModule::createEvent("ERROR_NO_MEDIA");
    LibDriveStrings::g_WarningNotEnoughDataOnDisc =
        DiagModule::createEvent("NOT_ENOUGH_DATA_ON_DISC");
    LibDriveStrings::g_EventIncorrectMediaInserted =
        DiagModule::createEvent("INCORRECT_MEDIA_INSERTED");
    LibDriveStrings::g_ErrorEventEncryptedDVDMedia = DiagModule::createEvent("ENCRYPTED_DVD_MEDIA");
    LibDriveStrings::g_WarnEventPassedWithErrors =
        DiagModule::createEvent("TEST_PASSED_WITH_ERRORS");
    LibDriveStrings::g_WarnEventFailedThreshold = DiagModule::createEvent("TEST_FAILED_THRESHOLD");
    LibDriveStrings::g_ErrorEventCheckingDiscCapability =
        DiagModule::createEvent("ERROR_CHECKING_DISC_CAPABILITIES");
    LibDriveStrings::g_ErrorEventFormattingMedia =
        DiagModule::createEvent("ERROR_FORMATTING_MEDIA");
    LibDriveStrings::g_ErrorEventErasingMedia = DiagModule::createEvent("ERROR_ERASING_MEDIA");
    LibDriveStrings::g_ErrorEventSynchronizingCache =
        DiagModule::createEvent("ERROR_SYNCHRONIZING_CACHE");
    LibDriveStrings::g_ErrorEventSettingSpeed = DiagModule::createEvent("ERROR_SETTING_SPEED");
    LibDriveStrings::g_ErrorEventGettingDriveSpeed =
        DiagModule::createEvent("ERROR_GETTING_DRIVE_SPEED");
    LibDriveStrings::g_ErrorEventSpeedNotReached =
        DiagModule::createEvent("ERROR_SPEED_NOT_REACHED");
    LibDriveStrings::g_ErrorEventClosingMedia = DiagModule::createEvent("ERROR_CLOSING_MEDIA");
    LibDriveStrings::g_EventMediaFull = DiagModule::createEvent("MEDIA_FULL_EVENT");
    LibDriveStrings::g_EventDiscNotEmpty = DiagModule::createEvent("ERROR_DISC_NOT_EMPTY");
    LibDriveStrings::g_EventDiscClosed = DiagModule::createEvent("MEDIA_CLOSED_EVENT");
    LibDriveStrings::g_EventWrongMediaReturned = DiagModule::createEvent("WRONG_MEDIA_RETURNED");
    LibDriveStrings::g_EventInvalidLRA = DiagModule::createEvent("INVALID_LAST_RECORDED_ADDRESS");
    LibDriveStrings::g_EventCurrentProfileNotSet =
        DiagModule::createEvent("CURRENT_PROFILE_NOT_SET");
    LibDriveStrings::g_EventSupportedCommandError =
        DiagModule::createEvent("SUPPORTED_COMMAND_ERROR");
    LibDriveStrings::g_EventRerunTest = DiagModule::createEvent("RERUN_TEST");
    LibDriveStrings::g_EventCommunicationCRCError =
        DiagModule::createEvent("COMMUNICATION_CRC_ERROR");
    LibDriveStrings::g_EventReadWriteTestReadFailure =
        DiagModule::createEvent("RW_TEST_READ_ERROR");
    LibDriveStrings::g_EventLongWriteInProgress =
        DiagModule::createEvent("LONG_WRITE_IN_PROGRESS_ERROR");
    LibDriveStrings::Event_DeviceBusy = DiagModule::createEvent("DeviceBusy");
    LibDriveStrings::g_errorFileOpenFail = DiagModule::createEvent("FileOpenFail");
    LibDriveStrings::g_errorRetrievingFileSize =
        DiagModule::createEvent("ERROR_RETRIEVING_FILE_SIZE");
    LibDriveStrings::g_errorSettingFilePointer =
        DiagModule::createEvent("ERROR_SETTING_FILE_POINTER");
    LibDriveStrings::g_warnNoDataFoundInChecksumFile =
        DiagModule::createEvent("NO_DATA_FOUND_IN_FILE");
    LibDriveStrings::g_errorChecksumFail = DiagModule::createEvent("CHECKSUM_TEST_FAIL");
}

}  // namespace kivrlibdrive::detail

// kivrlibdrive::WindowsOpticalDriveParameters and kivrlibdrive::WindowsOpticalDriveStrings: what
// a host's optical test hands the read/write test, its settings and every text and event it
// shows.
//
// A host derives from both. The library answers the operations it has an answer for and leaves
// the others pure. The virtual operations are declared in the order hosts compiled against this
// header depend on; never reorder them (the destructor comes last for that reason).
//
// The strings fill the variables of the library's shared events and localized strings
// (LibDriveStrings) and then return the localized text, report it as progress, return the
// event for the caller to raise, or raise it from "libDrive/windows/WindowsOpticalDriveStrings".
// A variable stays set on the shared handle until the next call that sets it. Statuses are
// shown as "%04X" texts: 0x3A00 as "3A00", 5 as "0005". Used on the host's test thread only.
#pragma once

#include "kiv/String.h"
#include "libDrive/Export.h"
#include "libDrive/windows/MediaType.h"
#include "quel5/Event.h"
#include "quel5/QuelString.h"
#include "quel5/Value.h"

namespace kivrlibdrive {

class LIBDRIVE_API WindowsOpticalDriveParameters {
public:
    // Approved IDs are matched as regular expressions rather than compared as text. false.
    virtual bool useRegex();
    // A failure on a disc that is not approved test media may be run again. false.
    virtual bool reRunNonQualMediaFailure();
    // The media check compares the disc with the required kinds.
    virtual bool checkRequiredMedia() = 0;
    // Only an empty disc may be tested.
    virtual bool blankMediaOnly() = 0;
    // A failed media check asks for another disc rather than ending the run.
    virtual bool promptUserForMedia() = 0;
    // A non-empty rewritable disc may be erased for the test.
    virtual bool eraseNonBlankMedia() = 0;
    // Expected duration of a blank or format, handed to the drive.
    virtual unsigned int eraseTimeSeconds() = 0;
    virtual bool eraseMediaAfterTest() = 0;
    // A stopped run tells the person that the disc is erased before it is.
    virtual bool notifyEraseOnAbort() = 0;
    // Sectors the write and verify passes cover.
    virtual long long totalSectorsToTest() = 0;
    // String list of approved IDs in pairs: disc ID, then manufacturer ID (for CD media the
    // lead-in and lead-out times).
    virtual quel5::Value approvedMediaIds() = 0;
    virtual bool qualifiedMediaRerunAllowed() = 0;
    // The run checks that the disc is approved test media.
    virtual bool checkForqualifiedMedia() = 0;
    // Discs the media check asks for before it gives up; 0: no limit.
    virtual unsigned int maxMediaPrompts() = 0;
    // Read by hosts, not by the library.
    virtual bool ejectMediaAtEnd() = 0;
    // The media check refuses ROM and copy-protected discs.
    virtual bool checkWritableMedia() = 0;
    // Media problems end the run as FAIL rather than as INCORRECTMEDIA or NOMEDIA.
    virtual bool failOnMediaProblems() = 0;
    // The disc's usage count is checked and raised. false.
    virtual bool limitMediaUsage();
    // Runs a disc may take part in. 999999.
    virtual unsigned int mediaUsageLimitNumber();

    virtual ~WindowsOpticalDriveParameters();
};

class LIBDRIVE_API WindowsOpticalDriveStrings {
public:
    // "ReRunTestPromptUseApprovedMedia" with "MediaName".
    virtual QuelString rerunTestUseApprovedMedia();
    // The media the test needs, for a person.
    virtual QuelString mediaName() = 0;
    // The title of every prompt the test shows.
    virtual QuelString promptTitle() = 0;
    // "INSERT_MEDIA_WITH_DATA" with "MediaName".
    virtual QuelString noMediaMessage();
    // "INCORRECT_MEDIA_INSERTED" with "MediaName1" and "MediaName2", both the media name.
    virtual QuelString notRequiredDiscMessage();
    // "PRE_TEST_PROMPT" with "MediaName".
    virtual QuelString pretestPrompt();
    // "MEDIA_INSERT_TITLE".
    virtual QuelString InsertMediaTitle();
    // "DISC_NOT_EMPTY" with "MediaName".
    virtual QuelString blankDiscRequiredMessage();
    // "MEDIA_CLOSED_MESSAGE" with "MediaName".
    virtual QuelString diskCompleteMessage();
    // "MEDIA_FULL_STRING" with "MediaName".
    virtual QuelString discFullMessage();
    // "ERASE_DISC_PROMPT" with "MediaName".
    virtual QuelString nonBlankMediaPrompt();
    // "ERASE_AFTER_CANCEL".
    virtual QuelString abortDetectedDiscEraseMessage();
    // "TEST_WITH_QUALIFIED_MEDIA" with "MediaName" and "CustomerName".
    virtual QuelString testWithQualifiedMedia();
    // "MEDIA_NOT_QUALIFIED" with "MediaName" and "CustomerName".
    virtual QuelString mediaNotQualified();
    // "ReRunTestPrompt" with "MediaName".
    virtual QuelString rerunTest();
    // "VERBOSE_INVALID_MEDIA_MESSAGE": "InsertedMedia" the media string of `inserted` (left as
    // it was for MEDIA_UNKNOWN and any other value), "RequiredMedia" the media name.
    virtual QuelString verboseInvalidDiscMessage(MediaType inserted);
    // "MEDIA_READ_ONLY" with "MediaName".
    virtual QuelString mediaIsReadOnlyMessage();
    // "CustomerName".
    virtual QuelString customerName();
    // "MEDIA_USAGE_LIMIT_REACHED" with "MediaName" and "MaxNumberOfWrites".
    virtual QuelString maxUsageLimitReached(const unsigned short& limit);
    // Raises "CHECKING_DISC_MAX_USAGE_LIMIT" (informative).
    virtual void checkingDiscUsageValueEvent();
    // "MAX_USAGE_LIMIT_REACHED" with "MediaName" and "MaxNumberOfWrites", not raised.
    virtual quel5::Event* maxUsageForMediaReachedEvent(unsigned int limit);
    // Timed progress (every 2 s) "WRITING_BLOCK" with "WriteBlock" and "TotalBlocks"; the third
    // argument is not used.
    virtual void writingSectorMessage(const unsigned long long& block,
                                      const unsigned long long& total, const unsigned int& speed);
    // Timed progress "CHECKING_BLOCK" with "WriteBlock" (the name writing uses) and
    // "TotalBlocks".
    virtual void readingSectorMessage(const unsigned long long& block,
                                      const unsigned long long& total);
    // Raises "ERROR_NO_MEDIA" (warning).
    virtual void noMediaWarningEvent();
    // Raises "UNABLE_TO_GET_DRIVE_GEOMETRY" (warning).
    virtual void unableToGetDriveGeometryEvent();
    // Progress "BLANKING_MEDIA".
    virtual void blankingDiscMessage();
    // showError("ERROR_ERASING_MEDIA").
    virtual void failedBlankingDiscEvent(const unsigned long& status);
    // Progress "FORMATTING_MEDIA".
    virtual void formattingDiscMessage();
    // showError("ERROR_FORMATTING_MEDIA").
    virtual void failedFormattingDiscEvent(const unsigned long& status);
    // Progress "CLOSING_SESSION".
    virtual void closingMediaMessage();
    // showError("ERROR_CLOSING_MEDIA").
    virtual void failedClosingDiscEvent(const unsigned long& status);
    // Raises "TEST_CANCELLED_NO_MEDIA" (warning).
    virtual void testCancelledEvent();
    // showError("ERROR_EJECTING_MEDIA").
    virtual void ejectFailedEvent(const unsigned long& status);
    // Progress "WAITING_FOR_UNIT_READY".
    virtual void updateProgressMessage();
    // Raises "DRIVE_ERROR_STARTING_OPTICAL_DRIVE" (error) with "ScsiError1".
    virtual void errorStartingDriveEvent(const unsigned long& status);
    // Raises "ERROR_SPEED_NOT_REACHED" (error) with "RequestedSpeed" and "ActualSpeed".
    virtual void errorRequiredSpeedNotReached(const unsigned long& requested,
                                              const unsigned long& actual);
    // Progress "OBTAINING_DRIVE_CAPACITY".
    virtual void obtainingDriveCapacityEvent();
    // Progress "EJECTING_MEDIA".
    virtual void ejectDiscEvent();
    // Raises `e` (informative).
    virtual void incompatibleMediumInstalledEvent(quel5::Event* e);
    // Raises `e` (informative).
    virtual void usagesLeftInfoEvent(quel5::Event* e);
    // Progress "WAITING_FOR_USER_TO_INSERT_MEDIA".
    virtual void insertMediaProgressMessage();
    // Progress "FLUSHING_DRIVE_BUFFER".
    virtual void flushingCacheProgressMessage();
    // Progress "LOADING_MEDIA" with "MediaName".
    virtual void loadingMediaProgressMessage();
    // Progress "RUNNING_AT_SPEED": "WriteSpeedIndex" the speed in kB/s, "WriteSpeed" its CD
    // multiple (speed / 177, rounded down).
    virtual void runningAtSpeedMessage(const unsigned long& speed);
    // Raises "COMMUNICATION_CRC_ERROR" (error).
    virtual void communicationCRCErrorEvent();
    // Raises "LONG_WRITE_IN_PROGRESS_ERROR" (error) with "WriteSector".
    virtual void writeTimeoutEvent(const unsigned long long& sector);
    // Not raised: "NO_MEDIA_PRESENT" with "MediaName".
    virtual quel5::Event* noMediaEvent();
    // Not raised: "INCORRECT_MEDIA_INSERTED" with "MediaName1" and "MediaName2".
    virtual quel5::Event* invalidMediaEvent();
    // Not raised: "MEDIA_FULL_EVENT" with "MediaName".
    virtual quel5::Event* mediaFullEvent();
    // Not raised: "MEDIA_CLOSED_EVENT" with "MediaName".
    virtual quel5::Event* mediaClosedEvent();
    // Not raised: "ERROR_DISC_NOT_EMPTY" with "MediaName".
    virtual quel5::Event* mediaNotEmptyEvent();
    // Not raised: "TestFailedOnNonQualMedia" with "CustomerName".
    virtual quel5::Event* mediaNotApprovedEvent();
    // Not raised: "CURRENT_USAGE_VALUE" with "NumberOfUsesRemaining".
    virtual quel5::Event* usagesLeftEvent(unsigned int left);
    // Raises "DRIVE_SCSI_WRITE_FAILURE" (error) with "WriteSector" and "ScsiError1".
    virtual void writeFailedEvent(const unsigned long long& sector, const unsigned long& status);
    // Raises "RW_TEST_READ_ERROR" (error) with "ReadSector" and "ScsiError1".
    virtual void readFailedEvent(const unsigned long long& sector, const unsigned long& status);

    virtual ~WindowsOpticalDriveStrings();

    // Sets "ScsiError" of `e` to `status` as "%04X" and raises `e` as an error.
    void showError(quel5::Event* e, const unsigned long& status);
    // Raises "SUPPORTED_COMMAND_ERROR" (error) with "ScsiError" and "ScsiCommand".
    static void showSupportedCommandError(const kiv::String& command, const unsigned long& status);
};

}  // namespace kivrlibdrive

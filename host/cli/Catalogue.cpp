#include "cli/Catalogue.h"

#include <string_view>

namespace host {
namespace {

constexpr CatalogueEntry kEvents[] = {
    {"CURRENT_USAGE_VALUE", "This test disc can be used {NumberOfUsesRemaining} more time(s)."},
    {"HardDrive_PasswordProtected", "The hard drive is password protected and cannot be tested."},
    {"TestFailedOnNonQualMedia",
     "The test failed on a disc that {CustomerName} has not qualified."},
    {"PromptingDisabled", "Prompting is disabled, so the test cannot ask for the media it needs."},
    {"InvalidRangeEntry", "The value of the parameter {PARAMETER_NAME} is not a valid range."},
    {"MAX_USAGE_LIMIT_REACHED",
     "This {MediaName} has reached its limit of {MaxNumberOfWrites} uses; use a new disc."},
    {"CHECKING_DISC_MAX_USAGE_LIMIT", "Checking how many times this disc has been used."},
    {"UNABLE_TO_GET_DRIVE_GEOMETRY",
     "The drive's geometry (capacity and sector size) could not be read."},
    {"TOTAL_SECTOR_GREATER_THAN_ZERO", "There are no sectors to test."},
    {"END_RANGE_GREATER_THAN_START_RANGE", "The end of the test range must lie beyond its start."},
    {"END_RANGE_SMALLER_THAN_TOTAL_SECTORS",
     "The end of the test range must not lie beyond the drive's capacity."},
    {"TOTAL_SECTORS_GREATER_THAN_DIFFERENCE",
     "More sectors were asked for than the test range holds."},
    {"INTERNAL_ERROR", "An internal error stopped the test."},
    {"INVALID_BUFFER_SIZE", "The drive reported a sector size of zero; no buffer could be made."},
    {"INVALID_BUFFER", "The data buffer of the test is not usable."},
    {"MSG_ERROR_ALLOCATING_MEMORY", "Memory for the test buffer could not be allocated."},
    {"BYTES_PER_SECTOR_GREATER_THAN_ZERO", "The drive reported zero bytes per sector."},
    {"SECTORS_PER_TRACK_GREATER_THAN_ZERO", "The drive reported zero sectors per track."},
    {"IO_SEEK_FAILURE", "Seeking on the drive failed."},
    {"IO_READ_FAILURE", "Reading from the drive failed."},
    {"IO_WRITE_FAILURE", "Writing to the drive failed."},
    {"INVALID_DRIVE_HANDLE", "The drive is not open; it cannot be tested."},
    {"InvalidSectorPercentToTestValue", "SectorPercentToTest must be set, from 1 to 100."},
    {"InvalidNumberOfSeeksValue", "NumberOfSeeks must be set to at least 1."},
    {"DATA_COMPARE_FAILED", "Sector {TestSector} did not read back the data expected."},
    {"MAX_ERRORS_EXCEEDED", "The test stopped after reaching its limit of {MaxError} errors."},
    {"UNABLE_TO_RESTORE_SECTOR",
     "{TestName}: the original data of sector {TestSector} could not be written back (range "
     "end {EndSector})."},
    {"MSG_PATTERN_MISMATCH_ERROR", "Sector {TestSector} did not return the pattern written to it."},
    {"UNABLE_TO_GET_DRIVE_LETTER", "The drive letter of the device could not be found."},
    {"SYSTEM_DRIVE", "This is the system drive; a destructive test will not run on it."},
    {"TEST_ABORTED", "The test was aborted."},
    {"NO_MEDIA_PRESENT", "There is no {MediaName} in the drive."},
    {"MEDIA_IS_WRITE_PROTECTED", "The media is write protected."},
    {"DRIVE_IO_READ_TIMEOUT", "A read from the drive timed out."},
    {"DRIVE_IO_READ_FAILURE", "The drive failed to read."},
    {"DRIVE_SCSI_WRITE_FAILURE",
     "Writing sector {WriteSector} failed with SCSI status {ScsiError1}."},
    {"DRIVE_IO_MEDIA_NOT_PRESENT", "The drive reports that no media is present."},
    {"DRIVE_ERROR_STARTING_DRIVE", "The drive could not be started."},
    {"DRIVE_ERROR_STARTING_OPTICAL_DRIVE",
     "The optical drive could not be started (SCSI status {ScsiError1})."},
    {"DRIVE_IO_READ_TOC_FAILURE", "The table of contents of the disc could not be read."},
    {"TEST_CANCELLED_NO_MEDIA", "The test was cancelled because no media was inserted."},
    {"ERROR_EJECTING_MEDIA", "The media could not be ejected (SCSI status {ScsiError})."},
    {"ERROR_STARTING_DRIVE", "The drive did not start."},
    {"ERROR_NO_MEDIA", "No media is present in the drive."},
    {"NOT_ENOUGH_DATA_ON_DISC", "The disc does not hold enough data for the test."},
    {"INCORRECT_MEDIA_INSERTED",
     "The media in the drive is not the one needed: insert {MediaName1} ({MediaName2})."},
    {"ENCRYPTED_DVD_MEDIA", "The DVD is encrypted and cannot be tested."},
    {"TEST_PASSED_WITH_ERRORS",
     "The test passed, but {percent}% of the tested sectors had errors (allowed: "
     "{threshold_percent}%)."},
    {"TEST_FAILED_THRESHOLD", "The error rate rose above the allowed {threshold_percent}%."},
    {"ERROR_CHECKING_DISC_CAPABILITIES", "The capabilities of the disc could not be checked."},
    {"ERROR_FORMATTING_MEDIA", "Formatting the media failed (SCSI status {ScsiError})."},
    {"ERROR_ERASING_MEDIA", "Erasing the media failed (SCSI status {ScsiError})."},
    {"ERROR_SYNCHRONIZING_CACHE", "Flushing the drive's cache failed (SCSI status {ScsiError})."},
    {"ERROR_SETTING_SPEED", "Setting the write speed failed (SCSI status {ScsiError})."},
    {"ERROR_GETTING_DRIVE_SPEED", "The drive's write speeds could not be read."},
    {"ERROR_SPEED_NOT_REACHED",
     "The drive ran at speed {ActualSpeed} instead of the requested {RequestedSpeed}."},
    {"ERROR_CLOSING_MEDIA", "Closing the disc failed (SCSI status {ScsiError})."},
    {"MEDIA_FULL_EVENT", "The {MediaName} is full."},
    {"ERROR_DISC_NOT_EMPTY", "The {MediaName} is not blank."},
    {"MEDIA_CLOSED_EVENT", "The {MediaName} is closed and cannot be written."},
    {"WRONG_MEDIA_RETURNED", "The drive reported another media type than expected."},
    {"INVALID_LAST_RECORDED_ADDRESS", "The drive reported an invalid last recorded address."},
    {"CURRENT_PROFILE_NOT_SET", "The drive did not report the current media profile."},
    {"SUPPORTED_COMMAND_ERROR",
     "The drive failed the command {ScsiCommand} with SCSI status {ScsiError}."},
    {"RERUN_TEST", "Running the test once more."},
    {"COMMUNICATION_CRC_ERROR", "A CRC error occurred while talking to the drive."},
    {"RW_TEST_READ_ERROR", "Reading sector {ReadSector} failed with SCSI status {ScsiError1}."},
    {"LONG_WRITE_IN_PROGRESS_ERROR", "The write to sector {WriteSector} took too long."},
    {"DeviceBusy", "The device is in use by another program."},
    {"FileOpenFail", "The checksum file could not be opened."},
    {"ERROR_RETRIEVING_FILE_SIZE", "The size of the checksum file could not be read."},
    {"ERROR_SETTING_FILE_POINTER", "Moving to a position in the checksum file failed."},
    {"NO_DATA_FOUND_IN_FILE", "The checksum file is empty."},
    {"CHECKSUM_TEST_FAIL", "The computed checksum does not match the expected one."},
};

constexpr CatalogueEntry kStrings[] = {
    {"MEDIA_USAGE_LIMIT_REACHED",
     "This {MediaName} has reached its limit of {MaxNumberOfWrites} uses. Insert a new disc."},
    {"READ_SECTOR", "Reading sector {ReadSector} of {EndSector}"},
    {"READ_SECTOR_FUNNEL", "Reading sectors {ReadSector1} and {ReadSector2} of {EndSector}"},
    {"LINEAR_SEEK_TEST", "Linear Seek Test"},
    {"RANDOM_SEEK_TEST", "Random Seek Test"},
    {"FUNNEL_SEEK_TEST", "Funnel Seek Test"},
    {"SURFACE_SCAN_TEST", "Surface Scan Test"},
    {"PATTERN_TEST", "Pattern Test"},
    {"CACHE_TEST", "Cache Test"},
    {"LINEAR_READ_COMPARE_TEST", "Linear Read/Compare Test"},
    {"MSG_INSERT_MEDIA", "Insert media into the drive."},
    {"TIMED_OUT_WAITING_FOR_UNIT", "Timed out waiting for the drive to become ready."},
    {"COMMAND_NOT_SUPPORTED", "The drive does not support this command."},
    {"LOGICAL_BLOCK_ADDRESS_OUT_OF_RANGE", "The block address lies outside the media."},
    {"ERROR_NO_MEDIA", "No media in the drive."},
    {"DEVICE_IS_BUSY", "The device is busy."},
    {"INVALID_SCSI_COMMAND_BLOCK", "The drive rejected the command block."},
    {"INVALID_SCSI_PARAM_LIST", "The drive rejected the command's parameter list."},
    {"MEDIA_WRITE_PROTECTED", "The media is write protected."},
    {"EJECTING_MEDIA", "Ejecting the media..."},
    {"SCSI_ERROR", "The drive reported a SCSI error."},
    {"WAITING_FOR_USER_TO_INSERT_MEDIA", "Waiting for media to be inserted..."},
    {"WAITING_FOR_UNIT_READY", "Waiting for the drive to become ready..."},
    {"INSERT_MEDIA_WITH_DATA", "Insert a {MediaName} that holds data."},
    {"LOADING_MEDIA", "Loading the {MediaName}..."},
    {"INCORRECT_MEDIA_INSERTED",
     "The wrong media is in the drive. Insert a {MediaName1} ({MediaName2})."},
    {"NOT_ENOUGH_DATA_IN_DISC", "The disc holds too little data for the test."},
    {"OBTAINING_DRIVE_CAPACITY", "Reading the drive's capacity..."},
    {"NO_MEDIA_PRESENT", "No media present."},
    {"MEDIA_INSERT_TITLE", "Insert Media"},
    {"ReRunTestPromptUseApprovedMedia",
     "The test failed. Insert an approved {MediaName} and run the test again?"},
    {"ReRunTestPrompt", "The test failed. Insert another {MediaName} and run the test again?"},
    {"RERUN_PROMPT_STAMP_MEDIA",
     "The test failed. Insert another pressed disc and run the test again?"},
    {"ReRunTestTitle", "Run the Test Again"},
    {"EncryptedMedia", "The disc is encrypted."},
    {"CopyProtectedMediaPrompt", "The disc is copy protected. Insert another disc."},
    {"INSERT_CHECKSUM_CD_MEDIA", "Insert the checksum test CD."},
    {"INSERT_CHECKSUM_DVD_MEDIA", "Insert the checksum test DVD."},
    {"CHECKSUM_CD_MEDIA_NAME", "checksum test CD"},
    {"CHECKSUM_DVD_MEDIA_NAME", "checksum test DVD"},
    {"NO_CHECKSUM_FILE_ON_MEDIA", "The media holds no checksum file."},
    {"WRITING_BLOCK", "Writing block {WriteBlock} of {TotalBlocks}"},
    {"CHECKING_BLOCK", "Checking block {WriteBlock} of {TotalBlocks}"},
    {"FLUSHING_DRIVE_BUFFER", "Flushing the drive's buffer..."},
    {"ERASE_DISC_PROMPT", "The {MediaName} is not blank. Erase it? Everything on it will be lost."},
    {"ERASE_AFTER_CANCEL", "The test was cancelled. Erase the disc now?"},
    {"FORMATTING_MEDIA", "Formatting the media..."},
    {"BLANKING_MEDIA", "Erasing the media..."},
    {"MEDIA_NOT_QUALIFIED", "This {MediaName} is not qualified by {CustomerName}."},
    {"TEST_WITH_QUALIFIED_MEDIA", "Run the test with a {MediaName} qualified by {CustomerName}."},
    {"DISC_NOT_EMPTY", "The {MediaName} must be blank for this test."},
    {"PRE_TEST_PROMPT", "The test will write to the {MediaName}. Continue?"},
    {"RUNNING_AT_SPEED", "Writing at {WriteSpeed}x ({WriteSpeedIndex} kB/s)"},
    {"CLOSING_SESSION", "Closing the session..."},
    {"MEDIA_CLOSED_MESSAGE", "The {MediaName} is closed; insert a writable one."},
    {"MEDIA_FULL_STRING", "The {MediaName} is full; insert one with free space."},
    {"VERBOSE_INVALID_MEDIA_MESSAGE",
     "A {InsertedMedia} is in the drive, but the test needs a {RequiredMedia}."},
    {"CDROMMedia", "CD-ROM"},
    {"CDRMedia", "CD-R"},
    {"CDRWMedia", "CD-RW"},
    {"DVDROMMedia", "DVD-ROM"},
    {"DVDMINUSRMedia", "DVD-R"},
    {"DVDMINUSRWMedia", "DVD-RW"},
    {"DVDMINUSRDLMedia", "DVD-R DL"},
    {"DVDPLUSRMedia", "DVD+R"},
    {"DVDPLUSRDLMedia", "DVD+R DL"},
    {"DVDPLUSRWMedia", "DVD+RW"},
    {"DVDRAMMedia", "DVD-RAM"},
    {"BDROMMedia", "BD-ROM"},
    {"BDRMedia", "BD-R"},
    {"BDREMedia", "BD-RE"},
    {"HDDVDROMMedia", "HD DVD-ROM"},
    {"HDDVDRMedia", "HD DVD-R"},
    {"HDDVDRWMedia", "HD DVD-RW"},
    {"HDDVDRAMMedia", "HD DVD-RAM"},
    {"CDMedia", "CD"},
    {"DVDMedia", "DVD"},
    {"TEST_MEDIA", "test {MediaName}"},
    {"MEDIA_READ_ONLY", "The {MediaName} is read-only."},
    {"CustomerName", "the manufacturer"},
    {"FormatMediaPrompt", "The media must be formatted before the test. Format it now?"},
    {"UnformattedMediaPrompt", "The media is not formatted. Insert formatted media."},
};

constexpr std::string_view find(std::span<const CatalogueEntry> entries, std::string_view key) {
    for (const auto& entry : entries) {
        if (entry.key == key) return entry.text;
    }
    return {};
}

// The library's keys, straight from its vocabulary table, so that a key added there without an
// English text here stops the build.
constexpr std::string_view kLibraryEventKeys[] = {
#define LIBDRIVE_EVENT(key, member) key,
#include "libDrive/Vocabulary.inc"
};
constexpr std::string_view kLibraryStringKeys[] = {
#define LIBDRIVE_LOCALIZED_STRING(key, member) key,
#include "libDrive/Vocabulary.inc"
};

consteval bool hasTextForEveryKey(std::span<const CatalogueEntry> entries,
                                  std::span<const std::string_view> keys) {
    for (const std::string_view key : keys) {
        if (find(entries, key).empty()) return false;
    }
    return true;
}

static_assert(hasTextForEveryKey(kEvents, kLibraryEventKeys), "an event key has no English text");
static_assert(hasTextForEveryKey(kStrings, kLibraryStringKeys),
              "a localized-string key has no English text");

}  // namespace

std::span<const CatalogueEntry> eventCatalogue() { return kEvents; }
std::span<const CatalogueEntry> stringCatalogue() { return kStrings; }

std::string_view eventText(std::string_view key) { return find(kEvents, key); }
std::string_view stringText(std::string_view key) { return find(kStrings, key); }

}  // namespace host

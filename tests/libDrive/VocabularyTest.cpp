// The library's vocabulary as the framework sees it after the library is loaded.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "libDrive/LibDrive.h"
#include "libDrive/LibDriveStrings.h"
#include "libDrive/Parameters.h"
#include "quel5/Registry.h"
#include "support/RecordingHost.h"

namespace {

using quel5::DataType;
using quel5::Registry;

struct ParameterRow {
    const char* key;
    quel5::Parameter* const* published;  // nullptr for the unpublished ones
    DataType type;
    const char* range;
    bool flagA;
    bool flagB;
};

const ParameterRow kParameters[] = {
    {"MaxErrors", nullptr, DataType::UINT32, "", true, false},
    {"MinErrorPercentage", nullptr, DataType::PERCENT, "", true, false},
    {"PreserveData", &kivrlibdrive::g_bPreserveData, DataType::BOOLEAN, "", false, true},
    {"NumberOfPatterns", &kivrlibdrive::g_NumberOfPatterns, DataType::UINT32, "", false, true},
    {"StartRange", nullptr, DataType::STRING, "", true, false},
    {"EndRange", nullptr, DataType::STRING, "", true, false},
    {"NumberOfSeeks", &kivrlibdrive::g_NumberOfSeeks, DataType::UINT32, "", false, false},
    {"SectorPercentToTest", &kivrlibdrive::g_SectorPercentToTest, DataType::PERCENT, "[1,100]",
     false, false},
    {"AdjustForLargeDrives", &kivrlibdrive::g_AdjustForLargeDrives, DataType::BOOLEAN, "", false,
     false},
    {"LargeDriveSize", &kivrlibdrive::g_LargeDriveSize, DataType::UINT32, "", false, false},
    {"LargeDriveStartRange", &kivrlibdrive::g_LargeDriveStartRange, DataType::STRING, "", false,
     false},
    {"LargeDriveEndRange", &kivrlibdrive::g_LargeDriveEndRange, DataType::STRING, "", false, false},
};

template <typename Handle>
struct HandleRow {
    const char* key;
    Handle* const* global;
};

const HandleRow<quel5::Event> kEvents[] = {
    {"CURRENT_USAGE_VALUE", &LibDriveStrings::g_usagesLeftEvent},
    {"HardDrive_PasswordProtected", &LibDriveStrings::g_harddrivepasswordprotected},
    {"TestFailedOnNonQualMedia", &LibDriveStrings::g_eventTestFailedOnNonQualMedia},
    {"PromptingDisabled", &LibDriveStrings::g_eventPromptingDisabled},
    {"InvalidRangeEntry", &LibDriveStrings::g_invalidParameterEvent},
    {"MAX_USAGE_LIMIT_REACHED", &LibDriveStrings::g_maxUsageLimitReached},
    {"CHECKING_DISC_MAX_USAGE_LIMIT", &LibDriveStrings::g_checkingDiscUsageValue},
    {"UNABLE_TO_GET_DRIVE_GEOMETRY", &LibDriveStrings::g_WarnEventUnableToGetDriveGeometry},
    {"TOTAL_SECTOR_GREATER_THAN_ZERO", &LibDriveStrings::g_WarnEventTotalSectorGreaterThanZero},
    {"END_RANGE_GREATER_THAN_START_RANGE",
     &LibDriveStrings::g_WarnEventEndRangeGreaterThanStartRange},
    {"END_RANGE_SMALLER_THAN_TOTAL_SECTORS",
     &LibDriveStrings::g_WarnEventEndRangeSmallerThanTotalSectors},
    {"TOTAL_SECTORS_GREATER_THAN_DIFFERENCE",
     &LibDriveStrings::g_WarnEventTotalSectorsGreaterThanDifference},
    {"INTERNAL_ERROR", &LibDriveStrings::g_WarnEventInternalError},
    {"INVALID_BUFFER_SIZE", &LibDriveStrings::g_WarnEventInvalidBufferSize},
    {"INVALID_BUFFER", &LibDriveStrings::g_WarnEventInvalidBuffer},
    {"MSG_ERROR_ALLOCATING_MEMORY", &LibDriveStrings::g_WarnEventMemoryAllocationError},
    {"BYTES_PER_SECTOR_GREATER_THAN_ZERO", &LibDriveStrings::g_WarnEventBytesPerSectorThanZero},
    {"SECTORS_PER_TRACK_GREATER_THAN_ZERO", &LibDriveStrings::g_WarnEventSectorsPerTrackThanZero},
    {"IO_SEEK_FAILURE", &LibDriveStrings::g_errorEventIOSeekFailure},
    {"IO_READ_FAILURE", &LibDriveStrings::g_errorEventIOReadFailure},
    {"IO_WRITE_FAILURE", &LibDriveStrings::g_errorEventIOWriteFailure},
    {"INVALID_DRIVE_HANDLE", &LibDriveStrings::g_WarnEventInvalidDriveHandle},
    {"InvalidSectorPercentToTestValue", &LibDriveStrings::g_InvalidSectorPercentToTestValue},
    {"InvalidNumberOfSeeksValue", &LibDriveStrings::g_InvalidNumberOfSeeksValue},
    {"DATA_COMPARE_FAILED", &LibDriveStrings::g_errorEventDataCompareFailed},
    {"MAX_ERRORS_EXCEEDED", &LibDriveStrings::g_errorEventMaxErrorsExceeded},
    {"UNABLE_TO_RESTORE_SECTOR", &LibDriveStrings::g_WarnEventUnableToRestoreSector},
    {"MSG_PATTERN_MISMATCH_ERROR", &LibDriveStrings::g_errorEventPatternMismatchError},
    {"UNABLE_TO_GET_DRIVE_LETTER", &LibDriveStrings::g_warnEventUnableToGetDriveLetter},
    {"SYSTEM_DRIVE", &LibDriveStrings::g_WarnEventSystemDrive},
    {"TEST_ABORTED", &LibDriveStrings::g_WarnEventTestAborted},
    {"NO_MEDIA_PRESENT", &LibDriveStrings::g_WarnEventNoMediaPresent},
    {"MEDIA_IS_WRITE_PROTECTED", &LibDriveStrings::g_WarnEventMediaIsWriteProtected},
    {"DRIVE_IO_READ_TIMEOUT", &LibDriveStrings::g_WarnEventDriveIOReadTimeout},
    {"DRIVE_IO_READ_FAILURE", &LibDriveStrings::g_ErrorEventDriveIOReadFailure},
    {"DRIVE_SCSI_WRITE_FAILURE", &LibDriveStrings::g_ErrorEventDriveScsiWriteFailure},
    {"DRIVE_IO_MEDIA_NOT_PRESENT", &LibDriveStrings::g_WarnEventDriveIOMediaNotPresent},
    {"DRIVE_ERROR_STARTING_DRIVE", &LibDriveStrings::g_ErrorEventDriveErrorStartingDrive},
    {"DRIVE_ERROR_STARTING_OPTICAL_DRIVE",
     &LibDriveStrings::g_ErrorEventDriveErrorStartingOpticalDrive},
    {"DRIVE_IO_READ_TOC_FAILURE", &LibDriveStrings::g_ErrorEventDriveIOReadTOCFailure},
    {"TEST_CANCELLED_NO_MEDIA", &LibDriveStrings::g_TestCancelledNoMedia},
    {"ERROR_EJECTING_MEDIA", &LibDriveStrings::g_ErrorEjectingMedia},
    {"ERROR_STARTING_DRIVE", &LibDriveStrings::g_ErrorStartingDrive},
    {"ERROR_NO_MEDIA", &LibDriveStrings::g_WarningNoMedia},
    {"NOT_ENOUGH_DATA_ON_DISC", &LibDriveStrings::g_WarningNotEnoughDataOnDisc},
    {"INCORRECT_MEDIA_INSERTED", &LibDriveStrings::g_EventIncorrectMediaInserted},
    {"ENCRYPTED_DVD_MEDIA", &LibDriveStrings::g_ErrorEventEncryptedDVDMedia},
    {"TEST_PASSED_WITH_ERRORS", &LibDriveStrings::g_WarnEventPassedWithErrors},
    {"TEST_FAILED_THRESHOLD", &LibDriveStrings::g_WarnEventFailedThreshold},
    {"ERROR_CHECKING_DISC_CAPABILITIES", &LibDriveStrings::g_ErrorEventCheckingDiscCapability},
    {"ERROR_FORMATTING_MEDIA", &LibDriveStrings::g_ErrorEventFormattingMedia},
    {"ERROR_ERASING_MEDIA", &LibDriveStrings::g_ErrorEventErasingMedia},
    {"ERROR_SYNCHRONIZING_CACHE", &LibDriveStrings::g_ErrorEventSynchronizingCache},
    {"ERROR_SETTING_SPEED", &LibDriveStrings::g_ErrorEventSettingSpeed},
    {"ERROR_GETTING_DRIVE_SPEED", &LibDriveStrings::g_ErrorEventGettingDriveSpeed},
    {"ERROR_SPEED_NOT_REACHED", &LibDriveStrings::g_ErrorEventSpeedNotReached},
    {"ERROR_CLOSING_MEDIA", &LibDriveStrings::g_ErrorEventClosingMedia},
    {"MEDIA_FULL_EVENT", &LibDriveStrings::g_EventMediaFull},
    {"ERROR_DISC_NOT_EMPTY", &LibDriveStrings::g_EventDiscNotEmpty},
    {"MEDIA_CLOSED_EVENT", &LibDriveStrings::g_EventDiscClosed},
    {"WRONG_MEDIA_RETURNED", &LibDriveStrings::g_EventWrongMediaReturned},
    {"INVALID_LAST_RECORDED_ADDRESS", &LibDriveStrings::g_EventInvalidLRA},
    {"CURRENT_PROFILE_NOT_SET", &LibDriveStrings::g_EventCurrentProfileNotSet},
    {"SUPPORTED_COMMAND_ERROR", &LibDriveStrings::g_EventSupportedCommandError},
    {"RERUN_TEST", &LibDriveStrings::g_EventRerunTest},
    {"COMMUNICATION_CRC_ERROR", &LibDriveStrings::g_EventCommunicationCRCError},
    {"RW_TEST_READ_ERROR", &LibDriveStrings::g_EventReadWriteTestReadFailure},
    {"LONG_WRITE_IN_PROGRESS_ERROR", &LibDriveStrings::g_EventLongWriteInProgress},
    {"DeviceBusy", &LibDriveStrings::Event_DeviceBusy},
    {"FileOpenFail", &LibDriveStrings::g_errorFileOpenFail},
    {"ERROR_RETRIEVING_FILE_SIZE", &LibDriveStrings::g_errorRetrievingFileSize},
    {"ERROR_SETTING_FILE_POINTER", &LibDriveStrings::g_errorSettingFilePointer},
    {"NO_DATA_FOUND_IN_FILE", &LibDriveStrings::g_warnNoDataFoundInChecksumFile},
    {"CHECKSUM_TEST_FAIL", &LibDriveStrings::g_errorChecksumFail},
};

const HandleRow<quel5::LocalizedString> kStrings[] = {
    {"MEDIA_USAGE_LIMIT_REACHED", &LibDriveStrings::g_mediaUsageLimitReached},
    {"READ_SECTOR", &LibDriveStrings::g_ReadSector},
    {"READ_SECTOR_FUNNEL", &LibDriveStrings::g_ReadSectorFunnel},
    {"LINEAR_SEEK_TEST", &LibDriveStrings::g_LinearSeekTest},
    {"RANDOM_SEEK_TEST", &LibDriveStrings::g_RandomSeekTest},
    {"FUNNEL_SEEK_TEST", &LibDriveStrings::g_FunnelSeekTest},
    {"SURFACE_SCAN_TEST", &LibDriveStrings::g_SurfaceScanTest},
    {"PATTERN_TEST", &LibDriveStrings::g_PatternTest},
    {"CACHE_TEST", &LibDriveStrings::g_CacheTest},
    {"LINEAR_READ_COMPARE_TEST", &LibDriveStrings::g_LinearReadCompareTest},
    {"MSG_INSERT_MEDIA", &LibDriveStrings::g_InsertMediaPrompt},
    {"TIMED_OUT_WAITING_FOR_UNIT", &LibDriveStrings::g_TimedOutWaitingForUnit},
    {"COMMAND_NOT_SUPPORTED", &LibDriveStrings::g_CommandNotSupported},
    {"LOGICAL_BLOCK_ADDRESS_OUT_OF_RANGE", &LibDriveStrings::g_LogicalBlockAddressOutOfRange},
    {"ERROR_NO_MEDIA", &LibDriveStrings::g_StringErrorNoMedia},
    {"DEVICE_IS_BUSY", &LibDriveStrings::g_DeviceIsBusy},
    {"INVALID_SCSI_COMMAND_BLOCK", &LibDriveStrings::g_InvalidScsiCommandBlock},
    {"INVALID_SCSI_PARAM_LIST", &LibDriveStrings::g_InvalidScsiParameterList},
    {"MEDIA_WRITE_PROTECTED", &LibDriveStrings::g_MediaWriteProtected},
    {"EJECTING_MEDIA", &LibDriveStrings::g_EjectingMedia},
    {"SCSI_ERROR", &LibDriveStrings::g_ScsiError},
    {"WAITING_FOR_USER_TO_INSERT_MEDIA", &LibDriveStrings::g_WaitingForMedia},
    {"WAITING_FOR_UNIT_READY", &LibDriveStrings::g_WaitingForUnitReady},
    {"INSERT_MEDIA_WITH_DATA", &LibDriveStrings::g_InserMediaWithData},
    {"LOADING_MEDIA", &LibDriveStrings::g_LoadingMedia},
    {"INCORRECT_MEDIA_INSERTED", &LibDriveStrings::g_MsgIncorrectMediaInserted},
    {"NOT_ENOUGH_DATA_IN_DISC", &LibDriveStrings::g_MsgNotEnoughDataInDisc},
    {"OBTAINING_DRIVE_CAPACITY", &LibDriveStrings::g_ObtainingDriveCapacity},
    {"NO_MEDIA_PRESENT", &LibDriveStrings::g_MsgNoMediaPresent},
    {"MEDIA_INSERT_TITLE", &LibDriveStrings::g_MsgMediaInsertTitle},
    {"ReRunTestPromptUseApprovedMedia", &LibDriveStrings::g_ReRunTestPromptUseApprovedMedia},
    {"ReRunTestPrompt", &LibDriveStrings::g_ReRunTestPrompt},
    {"RERUN_PROMPT_STAMP_MEDIA", &LibDriveStrings::g_ReRunTestPromptForStampedMedia},
    {"ReRunTestTitle", &LibDriveStrings::g_ReRunTestTitle},
    {"EncryptedMedia", &LibDriveStrings::g_EncryptedMedia},
    {"CopyProtectedMediaPrompt", &LibDriveStrings::g_CopyProtectedMediaPrompt},
    {"INSERT_CHECKSUM_CD_MEDIA", &LibDriveStrings::g_InsertCheckSumCDMedia},
    {"INSERT_CHECKSUM_DVD_MEDIA", &LibDriveStrings::g_InsertCheckSumDVDMedia},
    {"CHECKSUM_CD_MEDIA_NAME", &LibDriveStrings::g_CheckSumCDMediaName},
    {"CHECKSUM_DVD_MEDIA_NAME", &LibDriveStrings::g_CheckSumDVDMediaName},
    {"NO_CHECKSUM_FILE_ON_MEDIA", &LibDriveStrings::g_NoCheckSumFileOnMedia},
    {"WRITING_BLOCK", &LibDriveStrings::g_WritingToBlock},
    {"CHECKING_BLOCK", &LibDriveStrings::g_CheckingBlock},
    {"FLUSHING_DRIVE_BUFFER", &LibDriveStrings::g_FlushingDriveBuffer},
    {"ERASE_DISC_PROMPT", &LibDriveStrings::g_EraseDiscPrompt},
    {"ERASE_AFTER_CANCEL", &LibDriveStrings::g_EraseAfterCancel},
    {"FORMATTING_MEDIA", &LibDriveStrings::g_FormattingMedia},
    {"BLANKING_MEDIA", &LibDriveStrings::g_BlankingMedia},
    {"MEDIA_NOT_QUALIFIED", &LibDriveStrings::g_MediaNotQualified},
    {"TEST_WITH_QUALIFIED_MEDIA", &LibDriveStrings::g_TestWithQualifiedMedia},
    {"DISC_NOT_EMPTY", &LibDriveStrings::g_DiscNotEmpty},
    {"PRE_TEST_PROMPT", &LibDriveStrings::g_PreTestWarning},
    {"RUNNING_AT_SPEED", &LibDriveStrings::g_RunningAtSpeed},
    {"CLOSING_SESSION", &LibDriveStrings::g_ClosingSession},
    {"MEDIA_CLOSED_MESSAGE", &LibDriveStrings::g_MediaClosed},
    {"MEDIA_FULL_STRING", &LibDriveStrings::g_MediaFull},
    {"VERBOSE_INVALID_MEDIA_MESSAGE", &LibDriveStrings::g_verboseNotRequiredMediaMessage},
    {"CDROMMedia", &LibDriveStrings::g_CDROMMedia},
    {"CDRMedia", &LibDriveStrings::g_CDRMedia},
    {"CDRWMedia", &LibDriveStrings::g_CDRWMedia},
    {"DVDROMMedia", &LibDriveStrings::g_DVDROMMedia},
    {"DVDMINUSRMedia", &LibDriveStrings::g_DVDMINUSRMedia},
    {"DVDMINUSRWMedia", &LibDriveStrings::g_DVDMINUSRWMedia},
    {"DVDMINUSRDLMedia", &LibDriveStrings::g_DVDMINUSRDLMedia},
    {"DVDPLUSRMedia", &LibDriveStrings::g_DVDPLUSRMedia},
    {"DVDPLUSRDLMedia", &LibDriveStrings::g_DVDPLUSRDLMedia},
    {"DVDPLUSRWMedia", &LibDriveStrings::g_DVDPLUSRWMedia},
    {"DVDRAMMedia", &LibDriveStrings::g_DVDRAMMedia},
    {"BDROMMedia", &LibDriveStrings::g_BDROMMedia},
    {"BDRMedia", &LibDriveStrings::g_BDRMedia},
    {"BDREMedia", &LibDriveStrings::g_BDREMedia},
    {"HDDVDROMMedia", &LibDriveStrings::g_HDDVDROMMedia},
    {"HDDVDRMedia", &LibDriveStrings::g_HDDVDRMedia},
    {"HDDVDRWMedia", &LibDriveStrings::g_HDDVDRWMedia},
    {"HDDVDRAMMedia", &LibDriveStrings::g_HDDVDRAMMedia},
    {"CDMedia", &LibDriveStrings::g_CDMedia},
    {"DVDMedia", &LibDriveStrings::g_DVDMedia},
    {"TEST_MEDIA", &LibDriveStrings::g_testMedia},
    {"MEDIA_READ_ONLY", &LibDriveStrings::g_mediaIsReadOnly},
    {"CustomerName", &LibDriveStrings::g_customerName},
    {"FormatMediaPrompt", &LibDriveStrings::g_FormatMediaPrompt},
    {"UnformattedMediaPrompt", &LibDriveStrings::g_UnformattedMediaPrompt},
};

// The handles among `created` whose keys the library owns, in creation order. Other libraries
// in the process may have created handles too; they are left out.
template <typename Handle, typename Row, std::size_t N>
std::vector<std::string> ownKeysInOrder(const std::vector<Handle*>& created, const Row (&rows)[N],
                                        std::string (*keyOf)(const Handle&)) {
    std::vector<std::string> keys;
    for (const Handle* handle : created) {
        const std::string key = keyOf(*handle);
        for (const Row& row : rows) {
            if (key == row.key) keys.push_back(key);
        }
    }
    return keys;
}

template <typename Row, std::size_t N>
std::vector<std::string> tableKeys(const Row (&rows)[N]) {
    std::vector<std::string> keys;
    for (const Row& row : rows) keys.push_back(row.key);
    return keys;
}

std::string parameterKey(const quel5::Parameter& p) { return p.name().toUtf8(); }
std::string eventKey(const quel5::Event& e) { return e.key().toUtf8(); }
std::string stringKey(const quel5::LocalizedString& s) { return s.key().toUtf8(); }

TEST(Vocabulary, EveryKeyIsCreatedOnceInTableOrder) {
    const Registry& registry = Registry::instance();
    EXPECT_EQ(ownKeysInOrder(registry.parameters(), kParameters, parameterKey),
              tableKeys(kParameters));
    EXPECT_EQ(ownKeysInOrder(registry.events(), kEvents, eventKey), tableKeys(kEvents));
    EXPECT_EQ(ownKeysInOrder(registry.localizedStrings(), kStrings, stringKey),
              tableKeys(kStrings));
    EXPECT_EQ(std::size(kParameters), 12u);
    EXPECT_EQ(std::size(kEvents), 74u);
    EXPECT_EQ(std::size(kStrings), 82u);
}

TEST(Vocabulary, ParametersCarryTypeRangeAndFlagsAndPublishedGlobals) {
    for (const ParameterRow& row : kParameters) {
        SCOPED_TRACE(row.key);
        const quel5::Parameter* created = Registry::instance().findParameter(row.key);
        ASSERT_NE(created, nullptr);
        EXPECT_EQ(created->dataType(), row.type);
        EXPECT_EQ(created->range().toUtf8(), row.range);
        EXPECT_EQ(created->flagA(), row.flagA);
        EXPECT_EQ(created->flagB(), row.flagB);
        EXPECT_FALSE(created->isset());
        if (row.published != nullptr) {
            EXPECT_EQ(*row.published, created);
        }
    }
}

TEST(Vocabulary, EachGlobalHoldsTheHandleOfItsOwnKey) {
    for (const auto& row : kEvents) {
        SCOPED_TRACE(row.key);
        ASSERT_NE(*row.global, nullptr);
        EXPECT_EQ(*row.global, Registry::instance().findEvent(row.key));
    }
    for (const auto& row : kStrings) {
        SCOPED_TRACE(row.key);
        ASSERT_NE(*row.global, nullptr);
        EXPECT_EQ(*row.global, Registry::instance().findLocalizedString(row.key));
    }
}

TEST(Vocabulary, KeysSharedByAnEventAndAStringAreDistinctHandles) {
    for (const char* key : {"INCORRECT_MEDIA_INSERTED", "NO_MEDIA_PRESENT", "ERROR_NO_MEDIA"}) {
        SCOPED_TRACE(key);
        EXPECT_NE(Registry::instance().findEvent(key), nullptr);
        EXPECT_NE(Registry::instance().findLocalizedString(key), nullptr);
    }
}

TEST(Vocabulary, InitLibDriveRegistersTheLibraryOnEveryCall) {
    testsupport::RecordingHost host;
    testsupport::ScopedHost installed(host);
    const std::size_t before = Registry::instance().libraries().size();
    const std::size_t parameters = Registry::instance().parameters().size();

    kivrlibdrive::initLibDrive();
    kivrlibdrive::initLibDrive();

    EXPECT_EQ(host.libraries(), (std::vector<std::string>{"libDrive", "libDrive"}));
    ASSERT_EQ(Registry::instance().libraries().size(), before + 2);
    EXPECT_EQ(Registry::instance().libraries().back().toUtf8(), "libDrive");
    EXPECT_EQ(Registry::instance().parameters().size(), parameters);
    EXPECT_TRUE(host.events().empty());
}

}  // namespace

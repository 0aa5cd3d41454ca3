// The localized-string handles and the load-time calls that create them, in the order the
// host's catalogue lists them.
#include "libDrive/LibDriveStrings.h"
#include "libDrive/VocabularyCreation.h"
#include "quel5/DiagModule.h"

quel5::LocalizedString* LibDriveStrings::g_mediaUsageLimitReached = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ReadSector = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ReadSectorFunnel = nullptr;
quel5::LocalizedString* LibDriveStrings::g_LinearSeekTest = nullptr;
quel5::LocalizedString* LibDriveStrings::g_RandomSeekTest = nullptr;
quel5::LocalizedString* LibDriveStrings::g_FunnelSeekTest = nullptr;
quel5::LocalizedString* LibDriveStrings::g_SurfaceScanTest = nullptr;
quel5::LocalizedString* LibDriveStrings::g_PatternTest = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CacheTest = nullptr;
quel5::LocalizedString* LibDriveStrings::g_LinearReadCompareTest = nullptr;
quel5::LocalizedString* LibDriveStrings::g_InsertMediaPrompt = nullptr;
quel5::LocalizedString* LibDriveStrings::g_TimedOutWaitingForUnit = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CommandNotSupported = nullptr;
quel5::LocalizedString* LibDriveStrings::g_LogicalBlockAddressOutOfRange = nullptr;
quel5::LocalizedString* LibDriveStrings::g_StringErrorNoMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DeviceIsBusy = nullptr;
quel5::LocalizedString* LibDriveStrings::g_InvalidScsiCommandBlock = nullptr;
quel5::LocalizedString* LibDriveStrings::g_InvalidScsiParameterList = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MediaWriteProtected = nullptr;
quel5::LocalizedString* LibDriveStrings::g_EjectingMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ScsiError = nullptr;
quel5::LocalizedString* LibDriveStrings::g_WaitingForMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_WaitingForUnitReady = nullptr;
quel5::LocalizedString* LibDriveStrings::g_InserMediaWithData = nullptr;
quel5::LocalizedString* LibDriveStrings::g_LoadingMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MsgIncorrectMediaInserted = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MsgNotEnoughDataInDisc = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ObtainingDriveCapacity = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MsgNoMediaPresent = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MsgMediaInsertTitle = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ReRunTestPromptUseApprovedMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ReRunTestPrompt = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ReRunTestPromptForStampedMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ReRunTestTitle = nullptr;
quel5::LocalizedString* LibDriveStrings::g_EncryptedMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CopyProtectedMediaPrompt = nullptr;
quel5::LocalizedString* LibDriveStrings::g_InsertCheckSumCDMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_InsertCheckSumDVDMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CheckSumCDMediaName = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CheckSumDVDMediaName = nullptr;
quel5::LocalizedString* LibDriveStrings::g_NoCheckSumFileOnMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_WritingToBlock = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CheckingBlock = nullptr;
quel5::LocalizedString* LibDriveStrings::g_FlushingDriveBuffer = nullptr;
quel5::LocalizedString* LibDriveStrings::g_EraseDiscPrompt = nullptr;
quel5::LocalizedString* LibDriveStrings::g_EraseAfterCancel = nullptr;
quel5::LocalizedString* LibDriveStrings::g_FormattingMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_BlankingMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MediaNotQualified = nullptr;
quel5::LocalizedString* LibDriveStrings::g_TestWithQualifiedMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DiscNotEmpty = nullptr;
quel5::LocalizedString* LibDriveStrings::g_PreTestWarning = nullptr;
quel5::LocalizedString* LibDriveStrings::g_RunningAtSpeed = nullptr;
quel5::LocalizedString* LibDriveStrings::g_ClosingSession = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MediaClosed = nullptr;
quel5::LocalizedString* LibDriveStrings::g_MediaFull = nullptr;
quel5::LocalizedString* LibDriveStrings::g_verboseNotRequiredMediaMessage = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CDROMMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CDRMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CDRWMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDROMMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDMINUSRMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDMINUSRWMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDMINUSRDLMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDPLUSRMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDPLUSRDLMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDPLUSRWMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDRAMMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_BDROMMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_BDRMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_BDREMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_HDDVDROMMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_HDDVDRMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_HDDVDRWMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_HDDVDRAMMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_CDMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_DVDMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_testMedia = nullptr;
quel5::LocalizedString* LibDriveStrings::g_mediaIsReadOnly = nullptr;
quel5::LocalizedString* LibDriveStrings::g_customerName = nullptr;
quel5::LocalizedString* LibDriveStrings::g_FormatMediaPrompt = nullptr;
quel5::LocalizedString* LibDriveStrings::g_UnformattedMediaPrompt = nullptr;

namespace kivrlibdrive::detail {

void createLocalizedStrings() {
    using quel5::DiagModule;
    LibDriveStrings::g_mediaUsageLimitReached =
        DiagModule::createLocalizedString("MEDIA_USAGE_LIMIT_REACHED");
    LibDriveStrings::g_ReadSector = DiagModule::createLocalizedString("READ_SECTOR");
    LibDriveStrings::g_ReadSectorFunnel = DiagModule::createLocalizedString("READ_SECTOR_FUNNEL");
    LibDriveStrings::g_LinearSeekTest = DiagModule::createLocalizedString("LINEAR_SEEK_TEST");
    LibDriveStrings::g_RandomSeekTest = DiagModule::createLocalizedString("RANDOM_SEEK_TEST");
    LibDriveStrings::g_FunnelSeekTest = DiagModule::createLocalizedString("FUNNEL_SEEK_TEST");
    LibDriveStrings::g_SurfaceScanTest = DiagModule::createLocalizedString("SURFACE_SCAN_TEST");
    LibDriveStrings::g_PatternTest = DiagModule::createLocalizedString("PATTERN_TEST");
    LibDriveStrings::g_CacheTest = DiagModule::createLocalizedString("CACHE_TEST");
    LibDriveStrings::g_LinearReadCompareTest =
        DiagModule::createLocalizedString("LINEAR_READ_COMPARE_TEST");
    LibDriveStrings::g_InsertMediaPrompt = DiagModule::createLocalizedString("MSG_INSERT_MEDIA");
    LibDriveStrings::g_TimedOutWaitingForUnit =
        DiagModule::createLocalizedString("TIMED_OUT_WAITING_FOR_UNIT");
    LibDriveStrings::g_CommandNotSupported =
        DiagModule::createLocalizedString("COMMAND_NOT_SUPPORTED");
    LibDriveStrings::g_LogicalBlockAddressOutOfRange =
        DiagModule::createLocalizedString("LOGICAL_BLOCK_ADDRESS_OUT_OF_RANGE");
    LibDriveStrings::g_StringErrorNoMedia = DiagModule::createLocalizedString("ERROR_NO_MEDIA");
    LibDriveStrings::g_DeviceIsBusy = DiagModule::createLocalizedString("DEVICE_IS_BUSY");
    LibDriveStrings::g_InvalidScsiCommandBlock =
        DiagModule::createLocalizedString("INVALID_SCSI_COMMAND_BLOCK");
    LibDriveStrings::g_InvalidScsiParameterList =
        DiagModule::createLocalizedString("INVALID_SCSI_PARAM_LIST");
    LibDriveStrings::g_MediaWriteProtected =
        DiagModule::createLocalizedString("MEDIA_WRITE_PROTECTED");
    LibDriveStrings::g_EjectingMedia = DiagModule::createLocalizedString("EJECTING_MEDIA");
    LibDriveStrings::g_ScsiError = DiagModule::createLocalizedString("SCSI_ERROR");
    LibDriveStrings::g_WaitingForMedia =
        DiagModule::createLocalizedString("WAITING_FOR_USER_TO_INSERT_MEDIA");
    LibDriveStrings::g_WaitingForUnitReady =
        DiagModule::createLocalizedString("WAITING_FOR_UNIT_READY");
    LibDriveStrings::g_InserMediaWithData =
        DiagModule::createLocalizedString("INSERT_MEDIA_WITH_DATA");
    LibDriveStrings::g_LoadingMedia = DiagModule::createLocalizedString("LOADING_MEDIA");
    LibDriveStrings::g_MsgIncorrectMediaInserted =
        DiagModule::createLocalizedString("INCORRECT_MEDIA_INSERTED");
    LibDriveStrings::g_MsgNotEnoughDataInDisc =
        DiagModule::createLocalizedString("NOT_ENOUGH_DATA_IN_DISC");
    LibDriveStrings::g_ObtainingDriveCapacity =
        DiagModule::createLocalizedString("OBTAINING_DRIVE_CAPACITY");
    LibDriveStrings::g_MsgNoMediaPresent = DiagModule::createLocalizedString("NO_MEDIA_PRESENT");
    LibDriveStrings::g_MsgMediaInsertTitle =
        DiagModule::createLocalizedString("MEDIA_INSERT_TITLE");
    LibDriveStrings::g_ReRunTestPromptUseApprovedMedia =
        DiagModule::createLocalizedString("ReRunTestPromptUseApprovedMedia");
    LibDriveStrings::g_ReRunTestPrompt = DiagModule::createLocalizedString("ReRunTestPrompt");
    LibDriveStrings::g_ReRunTestPromptForStampedMedia =
        DiagModule::createLocalizedString("RERUN_PROMPT_STAMP_MEDIA");
    LibDriveStrings::g_ReRunTestTitle = DiagModule::createLocalizedString("ReRunTestTitle");
    LibDriveStrings::g_EncryptedMedia = DiagModule::createLocalizedString("EncryptedMedia");
    LibDriveStrings::g_CopyProtectedMediaPrompt =
        DiagModule::createLocalizedString("CopyProtectedMediaPrompt");
    LibDriveStrings::g_InsertCheckSumCDMedia =
        DiagModule::createLocalizedString("INSERT_CHECKSUM_CD_MEDIA");
    LibDriveStrings::g_InsertCheckSumDVDMedia =
        DiagModule::createLocalizedString("INSERT_CHECKSUM_DVD_MEDIA");
    LibDriveStrings::g_CheckSumCDMediaName =
        DiagModule::createLocalizedString("CHECKSUM_CD_MEDIA_NAME");
    LibDriveStrings::g_CheckSumDVDMediaName =
        DiagModule::createLocalizedString("CHECKSUM_DVD_MEDIA_NAME");
    LibDriveStrings::g_NoCheckSumFileOnMedia =
        DiagModule::createLocalizedString("NO_CHECKSUM_FILE_ON_MEDIA");
    LibDriveStrings::g_WritingToBlock = DiagModule::createLocalizedString("WRITING_BLOCK");
    LibDriveStrings::g_CheckingBlock = DiagModule::createLocalizedString("CHECKING_BLOCK");
    LibDriveStrings::g_FlushingDriveBuffer =
        DiagModule::createLocalizedString("FLUSHING_DRIVE_BUFFER");
    LibDriveStrings::g_EraseDiscPrompt = DiagModule::createLocalizedString("ERASE_DISC_PROMPT");
    LibDriveStrings::g_EraseAfterCancel = DiagModule::createLocalizedString("ERASE_AFTER_CANCEL");
    LibDriveStrings::g_FormattingMedia = DiagModule::createLocalizedString("FORMATTING_MEDIA");
    LibDriveStrings::g_BlankingMedia = DiagModule::createLocalizedString("BLANKING_MEDIA");
    LibDriveStrings::g_MediaNotQualified = DiagModule::createLocalizedString("MEDIA_NOT_QUALIFIED");
    LibDriveStrings::g_TestWithQualifiedMedia =
        DiagModule::createLocalizedString("TEST_WITH_QUALIFIED_MEDIA");
    LibDriveStrings::g_DiscNotEmpty = DiagModule::createLocalizedString("DISC_NOT_EMPTY");
    LibDriveStrings::g_PreTestWarning = DiagModule::createLocalizedString("PRE_TEST_PROMPT");
    LibDriveStrings::g_RunningAtSpeed = DiagModule::createLocalizedString("RUNNING_AT_SPEED");
    LibDriveStrings::g_ClosingSession = DiagModule::createLocalizedString("CLOSING_SESSION");
    LibDriveStrings::g_MediaClosed = DiagModule::createLocalizedString("MEDIA_CLOSED_MESSAGE");
    LibDriveStrings::g_MediaFull = DiagModule::createLocalizedString("MEDIA_FULL_STRING");
    LibDriveStrings::g_verboseNotRequiredMediaMessage =
        DiagModule::createLocalizedString("VERBOSE_INVALID_MEDIA_MESSAGE");
    LibDriveStrings::g_CDROMMedia = DiagModule::createLocalizedString("CDROMMedia");
    LibDriveStrings::g_CDRMedia = DiagModule::createLocalizedString("CDRMedia");
    LibDriveStrings::g_CDRWMedia = DiagModule::createLocalizedString("CDRWMedia");
    LibDriveStrings::g_DVDROMMedia = DiagModule::createLocalizedString("DVDROMMedia");
    LibDriveStrings::g_DVDMINUSRMedia = DiagModule::createLocalizedString("DVDMINUSRMedia");
    LibDriveStrings::g_DVDMINUSRWMedia = DiagModule::createLocalizedString("DVDMINUSRWMedia");
    LibDriveStrings::g_DVDMINUSRDLMedia = DiagModule::createLocalizedString("DVDMINUSRDLMedia");
    LibDriveStrings::g_DVDPLUSRMedia = DiagModule::createLocalizedString("DVDPLUSRMedia");
    LibDriveStrings::g_DVDPLUSRDLMedia = DiagModule::createLocalizedString("DVDPLUSRDLMedia");
    LibDriveStrings::g_DVDPLUSRWMedia = DiagModule::createLocalizedString("DVDPLUSRWMedia");
    LibDriveStrings::g_DVDRAMMedia = DiagModule::createLocalizedString("DVDRAMMedia");
    LibDriveStrings::g_BDROMMedia = DiagModule::createLocalizedString("BDROMMedia");
    LibDriveStrings::g_BDRMedia = DiagModule::createLocalizedString("BDRMedia");
    LibDriveStrings::g_BDREMedia = DiagModule::createLocalizedString("BDREMedia");
    LibDriveStrings::g_HDDVDROMMedia = DiagModule::createLocalizedString("HDDVDROMMedia");
    LibDriveStrings::g_HDDVDRMedia = DiagModule::createLocalizedString("HDDVDRMedia");
    LibDriveStrings::g_HDDVDRWMedia = DiagModule::createLocalizedString("HDDVDRWMedia");
    LibDriveStrings::g_HDDVDRAMMedia = DiagModule::createLocalizedString("HDDVDRAMMedia");
    LibDriveStrings::g_CDMedia = DiagModule::createLocalizedString("CDMedia");
    LibDriveStrings::g_DVDMedia = DiagModule::createLocalizedString("DVDMedia");
    LibDriveStrings::g_testMedia = DiagModule::createLocalizedString("TEST_MEDIA");
    LibDriveStrings::g_mediaIsReadOnly = DiagModule::createLocalizedString("MEDIA_READ_ONLY");
    LibDriveStrings::g_customerName = DiagModule::createLocalizedString("CustomerName");
    LibDriveStrings::g_FormatMediaPrompt = DiagModule::createLocalizedString("FormatMediaPrompt");
    LibDriveStrings::g_UnformattedMediaPrompt =
        DiagModule::createLocalizedString("UnformattedMediaPrompt");
}

}  // namespace kivrlibdrive::detail

#include "libDrive/windows/WindowsOpticalDriveStrings.h"

#include <iterator>

#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace {

const wchar_t* const kSource = L"libDrive/windows/WindowsOpticalDriveStrings";

// The source lines the optical test's events are raised with.
constexpr int kCheckingUsageLine = 37;
constexpr int kTestCancelledLine = 167;
constexpr int kIncompatibleMediumLine = 179;
constexpr int kUsagesLeftLine = 183;
constexpr int kErrorStartingDriveLine = 201;
constexpr int kWriteFailedLine = 214;
constexpr int kReadFailedLine = 227;
constexpr int kShowErrorLine = 312;
constexpr int kSpeedNotReachedLine = 372;
constexpr int kNoMediaLine = 388;
constexpr int kNoGeometryLine = 394;
constexpr int kSupportedCommandLine = 456;
constexpr int kCrcErrorLine = 462;
constexpr int kLongWriteLine = 469;

// Writing and checking report their block at most this often.
constexpr double kBlockProgressIntervalMs = 2000.0;
// kB/s of 1x CD speed: "RUNNING_AT_SPEED" shows the multiple.
constexpr unsigned long kCdSpeedKilobytes = 177;

// "%04X": upper-case hexadecimal, at least four digits.
kiv::String statusText(unsigned long status) { return kiv::String::fromHex(status, 4); }

QuelString textOf(quel5::LocalizedString* string) { return string->localizedString(); }

// The media strings of MediaType 0 to 17, in that order.
quel5::LocalizedString* mediaString(MediaType type) {
    quel5::LocalizedString* const strings[] = {
        LibDriveStrings::g_CDROMMedia,      LibDriveStrings::g_CDRMedia,
        LibDriveStrings::g_CDRWMedia,       LibDriveStrings::g_DVDROMMedia,
        LibDriveStrings::g_DVDMINUSRMedia,  LibDriveStrings::g_DVDMINUSRDLMedia,
        LibDriveStrings::g_DVDMINUSRWMedia, LibDriveStrings::g_DVDPLUSRMedia,
        LibDriveStrings::g_DVDPLUSRDLMedia, LibDriveStrings::g_DVDPLUSRWMedia,
        LibDriveStrings::g_BDROMMedia,      LibDriveStrings::g_BDRMedia,
        LibDriveStrings::g_BDREMedia,       LibDriveStrings::g_HDDVDROMMedia,
        LibDriveStrings::g_HDDVDRMedia,     LibDriveStrings::g_HDDVDRWMedia,
        LibDriveStrings::g_HDDVDRAMMedia,   LibDriveStrings::g_DVDRAMMedia,
    };
    const int index = static_cast<int>(type);
    return index >= 0 && index < static_cast<int>(std::size(strings)) ? strings[index] : nullptr;
}

}  // namespace

bool WindowsOpticalDriveParameters::useRegex() { return false; }
bool WindowsOpticalDriveParameters::reRunNonQualMediaFailure() { return false; }
bool WindowsOpticalDriveParameters::limitMediaUsage() { return false; }
unsigned int WindowsOpticalDriveParameters::mediaUsageLimitNumber() { return 999999; }
WindowsOpticalDriveParameters::~WindowsOpticalDriveParameters() = default;

WindowsOpticalDriveStrings::~WindowsOpticalDriveStrings() = default;

QuelString WindowsOpticalDriveStrings::rerunTestUseApprovedMedia() {
    LibDriveStrings::g_ReRunTestPromptUseApprovedMedia->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_ReRunTestPromptUseApprovedMedia);
}

QuelString WindowsOpticalDriveStrings::noMediaMessage() {
    LibDriveStrings::g_InserMediaWithData->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_InserMediaWithData);
}

QuelString WindowsOpticalDriveStrings::notRequiredDiscMessage() {
    const QuelString name = mediaName();
    LibDriveStrings::g_MsgIncorrectMediaInserted->setVariable(L"MediaName1", name)
        .setVariable(L"MediaName2", name);
    return textOf(LibDriveStrings::g_MsgIncorrectMediaInserted);
}

QuelString WindowsOpticalDriveStrings::pretestPrompt() {
    LibDriveStrings::g_PreTestWarning->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_PreTestWarning);
}

QuelString WindowsOpticalDriveStrings::InsertMediaTitle() {
    return textOf(LibDriveStrings::g_MsgMediaInsertTitle);
}

QuelString WindowsOpticalDriveStrings::blankDiscRequiredMessage() {
    LibDriveStrings::g_DiscNotEmpty->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_DiscNotEmpty);
}

QuelString WindowsOpticalDriveStrings::diskCompleteMessage() {
    LibDriveStrings::g_MediaClosed->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_MediaClosed);
}

QuelString WindowsOpticalDriveStrings::discFullMessage() {
    LibDriveStrings::g_MediaFull->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_MediaFull);
}

QuelString WindowsOpticalDriveStrings::nonBlankMediaPrompt() {
    LibDriveStrings::g_EraseDiscPrompt->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_EraseDiscPrompt);
}

QuelString WindowsOpticalDriveStrings::abortDetectedDiscEraseMessage() {
    return textOf(LibDriveStrings::g_EraseAfterCancel);
}

QuelString WindowsOpticalDriveStrings::testWithQualifiedMedia() {
    LibDriveStrings::g_TestWithQualifiedMedia->setVariable(L"MediaName", mediaName())
        .setVariable(L"CustomerName", customerName());
    return textOf(LibDriveStrings::g_TestWithQualifiedMedia);
}

QuelString WindowsOpticalDriveStrings::mediaNotQualified() {
    LibDriveStrings::g_MediaNotQualified->setVariable(L"MediaName", mediaName())
        .setVariable(L"CustomerName", customerName());
    return textOf(LibDriveStrings::g_MediaNotQualified);
}

QuelString WindowsOpticalDriveStrings::rerunTest() {
    LibDriveStrings::g_ReRunTestPrompt->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_ReRunTestPrompt);
}

QuelString WindowsOpticalDriveStrings::verboseInvalidDiscMessage(MediaType inserted) {
    if (quel5::LocalizedString* media = mediaString(inserted)) {
        LibDriveStrings::g_verboseNotRequiredMediaMessage->setVariable(L"InsertedMedia",
                                                                       textOf(media));
    }
    LibDriveStrings::g_verboseNotRequiredMediaMessage->setVariable(L"RequiredMedia", mediaName());
    return textOf(LibDriveStrings::g_verboseNotRequiredMediaMessage);
}

QuelString WindowsOpticalDriveStrings::mediaIsReadOnlyMessage() {
    LibDriveStrings::g_mediaIsReadOnly->setVariable(L"MediaName", mediaName());
    return textOf(LibDriveStrings::g_mediaIsReadOnly);
}

QuelString WindowsOpticalDriveStrings::customerName() {
    return textOf(LibDriveStrings::g_customerName);
}

QuelString WindowsOpticalDriveStrings::maxUsageLimitReached(const unsigned short& limit) {
    LibDriveStrings::g_mediaUsageLimitReached->setVariable(L"MediaName", mediaName())
        .setVariable(L"MaxNumberOfWrites", static_cast<unsigned int>(limit));
    return textOf(LibDriveStrings::g_mediaUsageLimitReached);
}

void WindowsOpticalDriveStrings::checkingDiscUsageValueEvent() {
    quel5::DiagModule::informative(LibDriveStrings::g_checkingDiscUsageValue, kSource,
                                   kCheckingUsageLine);
}

quel5::Event* WindowsOpticalDriveStrings::maxUsageForMediaReachedEvent(unsigned int limit) {
    LibDriveStrings::g_maxUsageLimitReached->setVariable(L"MediaName", mediaName())
        .setVariable(L"MaxNumberOfWrites", limit);
    return LibDriveStrings::g_maxUsageLimitReached;
}

void WindowsOpticalDriveStrings::writingSectorMessage(const unsigned long long& block,
                                                      const unsigned long long& total,
                                                      const unsigned int&) {
    LibDriveStrings::g_WritingToBlock->setVariable(L"WriteBlock", block)
        .setVariable(L"TotalBlocks", total);
    quel5::DiagModule::progressTimed(kBlockProgressIntervalMs, LibDriveStrings::g_WritingToBlock);
}

void WindowsOpticalDriveStrings::readingSectorMessage(const unsigned long long& block,
                                                      const unsigned long long& total) {
    LibDriveStrings::g_CheckingBlock->setVariable(L"WriteBlock", block)
        .setVariable(L"TotalBlocks", total);
    quel5::DiagModule::progressTimed(kBlockProgressIntervalMs, LibDriveStrings::g_CheckingBlock);
}

void WindowsOpticalDriveStrings::noMediaWarningEvent() {
    quel5::DiagModule::warning(LibDriveStrings::g_WarningNoMedia, kSource, kNoMediaLine);
}

void WindowsOpticalDriveStrings::unableToGetDriveGeometryEvent() {
    quel5::DiagModule::warning(LibDriveStrings::g_WarnEventUnableToGetDriveGeometry, kSource,
                               kNoGeometryLine);
}

void WindowsOpticalDriveStrings::blankingDiscMessage() {
    quel5::DiagModule::progress(LibDriveStrings::g_BlankingMedia);
}

void WindowsOpticalDriveStrings::failedBlankingDiscEvent(const unsigned long& status) {
    showError(LibDriveStrings::g_ErrorEventErasingMedia, status);
}

void WindowsOpticalDriveStrings::formattingDiscMessage() {
    quel5::DiagModule::progress(LibDriveStrings::g_FormattingMedia);
}

void WindowsOpticalDriveStrings::failedFormattingDiscEvent(const unsigned long& status) {
    showError(LibDriveStrings::g_ErrorEventFormattingMedia, status);
}

void WindowsOpticalDriveStrings::closingMediaMessage() {
    quel5::DiagModule::progress(LibDriveStrings::g_ClosingSession);
}

void WindowsOpticalDriveStrings::failedClosingDiscEvent(const unsigned long& status) {
    showError(LibDriveStrings::g_ErrorEventClosingMedia, status);
}

void WindowsOpticalDriveStrings::testCancelledEvent() {
    quel5::DiagModule::warning(LibDriveStrings::g_TestCancelledNoMedia, kSource,
                               kTestCancelledLine);
}

void WindowsOpticalDriveStrings::ejectFailedEvent(const unsigned long& status) {
    showError(LibDriveStrings::g_ErrorEjectingMedia, status);
}

void WindowsOpticalDriveStrings::updateProgressMessage() {
    quel5::DiagModule::progress(LibDriveStrings::g_WaitingForUnitReady);
}

void WindowsOpticalDriveStrings::errorStartingDriveEvent(const unsigned long& status) {
    LibDriveStrings::g_ErrorEventDriveErrorStartingOpticalDrive->setVariable(L"ScsiError1",
                                                                             statusText(status));
    quel5::DiagModule::error(LibDriveStrings::g_ErrorEventDriveErrorStartingOpticalDrive, kSource,
                             kErrorStartingDriveLine);
}

void WindowsOpticalDriveStrings::errorRequiredSpeedNotReached(const unsigned long& requested,
                                                              const unsigned long& actual) {
    LibDriveStrings::g_ErrorEventSpeedNotReached->setVariable(L"RequestedSpeed", requested)
        .setVariable(L"ActualSpeed", actual);
    quel5::DiagModule::error(LibDriveStrings::g_ErrorEventSpeedNotReached, kSource,
                             kSpeedNotReachedLine);
}

void WindowsOpticalDriveStrings::obtainingDriveCapacityEvent() {
    quel5::DiagModule::progress(LibDriveStrings::g_ObtainingDriveCapacity);
}

void WindowsOpticalDriveStrings::ejectDiscEvent() {
    quel5::DiagModule::progress(LibDriveStrings::g_EjectingMedia);
}

void WindowsOpticalDriveStrings::incompatibleMediumInstalledEvent(quel5::Event* e) {
    quel5::DiagModule::informative(e, kSource, kIncompatibleMediumLine);
}

void WindowsOpticalDriveStrings::usagesLeftInfoEvent(quel5::Event* e) {
    quel5::DiagModule::informative(e, kSource, kUsagesLeftLine);
}

void WindowsOpticalDriveStrings::insertMediaProgressMessage() {
    quel5::DiagModule::progress(LibDriveStrings::g_WaitingForMedia);
}

void WindowsOpticalDriveStrings::flushingCacheProgressMessage() {
    quel5::DiagModule::progress(LibDriveStrings::g_FlushingDriveBuffer);
}

void WindowsOpticalDriveStrings::loadingMediaProgressMessage() {
    LibDriveStrings::g_LoadingMedia->setVariable(L"MediaName", mediaName());
    quel5::DiagModule::progress(LibDriveStrings::g_LoadingMedia);
}

void WindowsOpticalDriveStrings::runningAtSpeedMessage(const unsigned long& speed) {
    LibDriveStrings::g_RunningAtSpeed->setVariable(L"WriteSpeedIndex", speed)
        .setVariable(L"WriteSpeed", speed / kCdSpeedKilobytes);
    quel5::DiagModule::progress(LibDriveStrings::g_RunningAtSpeed);
}

void WindowsOpticalDriveStrings::communicationCRCErrorEvent() {
    quel5::DiagModule::error(LibDriveStrings::g_EventCommunicationCRCError, kSource, kCrcErrorLine);
}

void WindowsOpticalDriveStrings::writeTimeoutEvent(const unsigned long long& sector) {
    LibDriveStrings::g_EventLongWriteInProgress->setVariable(L"WriteSector", sector);
    quel5::DiagModule::error(LibDriveStrings::g_EventLongWriteInProgress, kSource, kLongWriteLine);
}

quel5::Event* WindowsOpticalDriveStrings::noMediaEvent() {
    LibDriveStrings::g_WarnEventNoMediaPresent->setVariable(L"MediaName", mediaName());
    return LibDriveStrings::g_WarnEventNoMediaPresent;
}

quel5::Event* WindowsOpticalDriveStrings::invalidMediaEvent() {
    const QuelString name = mediaName();
    LibDriveStrings::g_EventIncorrectMediaInserted->setVariable(L"MediaName1", name)
        .setVariable(L"MediaName2", name);
    return LibDriveStrings::g_EventIncorrectMediaInserted;
}

quel5::Event* WindowsOpticalDriveStrings::mediaFullEvent() {
    LibDriveStrings::g_EventMediaFull->setVariable(L"MediaName", mediaName());
    return LibDriveStrings::g_EventMediaFull;
}

quel5::Event* WindowsOpticalDriveStrings::mediaClosedEvent() {
    LibDriveStrings::g_EventDiscClosed->setVariable(L"MediaName", mediaName());
    return LibDriveStrings::g_EventDiscClosed;
}

quel5::Event* WindowsOpticalDriveStrings::mediaNotEmptyEvent() {
    LibDriveStrings::g_EventDiscNotEmpty->setVariable(L"MediaName", mediaName());
    return LibDriveStrings::g_EventDiscNotEmpty;
}

quel5::Event* WindowsOpticalDriveStrings::mediaNotApprovedEvent() {
    LibDriveStrings::g_eventTestFailedOnNonQualMedia->setVariable(L"CustomerName", customerName());
    return LibDriveStrings::g_eventTestFailedOnNonQualMedia;
}

quel5::Event* WindowsOpticalDriveStrings::usagesLeftEvent(unsigned int left) {
    LibDriveStrings::g_usagesLeftEvent->setVariable(L"NumberOfUsesRemaining", left);
    return LibDriveStrings::g_usagesLeftEvent;
}

void WindowsOpticalDriveStrings::writeFailedEvent(const unsigned long long& sector,
                                                  const unsigned long& status) {
    LibDriveStrings::g_ErrorEventDriveScsiWriteFailure->setVariable(L"WriteSector", sector)
        .setVariable(L"ScsiError1", statusText(status));
    quel5::DiagModule::error(LibDriveStrings::g_ErrorEventDriveScsiWriteFailure, kSource,
                             kWriteFailedLine);
}

void WindowsOpticalDriveStrings::readFailedEvent(const unsigned long long& sector,
                                                 const unsigned long& status) {
    LibDriveStrings::g_EventReadWriteTestReadFailure->setVariable(L"ReadSector", sector)
        .setVariable(L"ScsiError1", statusText(status));
    quel5::DiagModule::error(LibDriveStrings::g_EventReadWriteTestReadFailure, kSource,
                             kReadFailedLine);
}

void WindowsOpticalDriveStrings::showError(quel5::Event* e, const unsigned long& status) {
    e->setVariable(L"ScsiError", statusText(status));
    quel5::DiagModule::error(e, kSource, kShowErrorLine);
}

void WindowsOpticalDriveStrings::showSupportedCommandError(const kiv::String& command,
                                                           const unsigned long& status) {
    LibDriveStrings::g_EventSupportedCommandError->setVariable(L"ScsiError", statusText(status))
        .setVariable(L"ScsiCommand", command);
    quel5::DiagModule::error(LibDriveStrings::g_EventSupportedCommandError, kSource,
                             kSupportedCommandLine);
}

}  // namespace kivrlibdrive

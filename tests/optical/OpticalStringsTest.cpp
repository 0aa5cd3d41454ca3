// The optical test's texts: every string and event of the strings class with its key, its
// variables (numbers as numbers, statuses as "%04X" texts), whether it is returned, reported as
// progress or raised, and its source line.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "libDrive/windows/WindowsOpticalDriveStrings.h"
#include "quel5/DiagModule.h"
#include "support/RecordingHost.h"

namespace {

using kivrlibdrive::WindowsOpticalDriveStrings;

constexpr const char* kSource = "libDrive/windows/WindowsOpticalDriveStrings";

class HostStrings : public WindowsOpticalDriveStrings {
public:
    QuelString mediaName() override { return L"DVD+RW"; }
    QuelString promptTitle() override { return L"Optical test"; }
};

// "KEY{Name=Value,...}": a key and its variables as the recording host writes them.
std::string described(const std::string& key, const quel5::Variables& variables) {
    std::string text = key + "{";
    for (std::size_t i = 0; i < variables.size(); ++i) {
        text += (i ? "," : "") + variables[i].first.toUtf8() + "=" +
                variables[i].second.toString().toUtf8();
    }
    return text + "}";
}

// What one call did, as one line: the text it returned, the progress it reported or the
// event it raised (with severity and line), or the event it handed back unraised.
std::string whatItDid(testsupport::RecordingHost& host, const std::function<std::string()>& call) {
    host.clear();
    const std::string returned = call();
    const auto events = host.events();
    const auto progress = host.progressReports();
    if (!events.empty()) {
        const auto& event = events.back();
        EXPECT_EQ(event.source, kSource);
        const char* severity = event.severity == quel5::Severity::ERROR     ? "error"
                               : event.severity == quel5::Severity::WARNING ? "warning"
                                                                            : "informative";
        return std::string(severity) + " " + described(event.key, event.variables) + " line " +
               std::to_string(event.line);
    }
    if (!progress.empty()) {
        return "progress " + progress.back().text +
               (progress.back().intervalMs > 0
                    ? " every " + std::to_string(static_cast<int>(progress.back().intervalMs))
                    : "");
    }
    return returned;
}

std::string text(const QuelString& value) { return value.toUtf8(); }
// A call made for what it reports or raises; it returns nothing.
std::function<std::string()> reports(std::function<void()> call) {
    return [call] {
        call();
        return std::string();
    };
}
std::string unraised(quel5::Event* event) {
    return described(event->key().toUtf8(), event->variables());
}

TEST(OpticalStringsTest, EveryStringAndEventAsTheTestUsesIt) {
    testsupport::RecordingHost host;
    testsupport::ScopedHost installed(host);
    HostStrings s;
    quel5::Event ownEvent("SOME_EVENT");
    const struct {
        const char* operation;
        std::function<std::string()> call;
        std::string did;
    } cases[] = {
        // clang-format off
        {"rerunTestUseApprovedMedia", [&] { return text(s.rerunTestUseApprovedMedia()); }, "ReRunTestPromptUseApprovedMedia{MediaName=DVD+RW}"},
        {"noMediaMessage", [&] { return text(s.noMediaMessage()); }, "INSERT_MEDIA_WITH_DATA{MediaName=DVD+RW}"},
        {"notRequiredDiscMessage", [&] { return text(s.notRequiredDiscMessage()); }, "INCORRECT_MEDIA_INSERTED{MediaName1=DVD+RW,MediaName2=DVD+RW}"},
        {"pretestPrompt", [&] { return text(s.pretestPrompt()); }, "PRE_TEST_PROMPT{MediaName=DVD+RW}"},
        {"InsertMediaTitle", [&] { return text(s.InsertMediaTitle()); }, "MEDIA_INSERT_TITLE"},
        {"blankDiscRequiredMessage", [&] { return text(s.blankDiscRequiredMessage()); }, "DISC_NOT_EMPTY{MediaName=DVD+RW}"},
        {"diskCompleteMessage", [&] { return text(s.diskCompleteMessage()); }, "MEDIA_CLOSED_MESSAGE{MediaName=DVD+RW}"},
        {"discFullMessage", [&] { return text(s.discFullMessage()); }, "MEDIA_FULL_STRING{MediaName=DVD+RW}"},
        {"nonBlankMediaPrompt", [&] { return text(s.nonBlankMediaPrompt()); }, "ERASE_DISC_PROMPT{MediaName=DVD+RW}"},
        {"abortDetectedDiscEraseMessage", [&] { return text(s.abortDetectedDiscEraseMessage()); }, "ERASE_AFTER_CANCEL"},
        {"testWithQualifiedMedia", [&] { return text(s.testWithQualifiedMedia()); }, "TEST_WITH_QUALIFIED_MEDIA{MediaName=DVD+RW,CustomerName=CustomerName}"},
        {"mediaNotQualified", [&] { return text(s.mediaNotQualified()); }, "MEDIA_NOT_QUALIFIED{MediaName=DVD+RW,CustomerName=CustomerName}"},
        {"rerunTest", [&] { return text(s.rerunTest()); }, "ReRunTestPrompt{MediaName=DVD+RW}"},
        {"verboseInvalidDiscMessage(BD-R)", [&] { return text(s.verboseInvalidDiscMessage(kivrlibdrive::MEDIA_BDR)); }, "VERBOSE_INVALID_MEDIA_MESSAGE{InsertedMedia=BDRMedia,RequiredMedia=DVD+RW}"},
        // An unknown kind leaves the last inserted media in place.
        {"verboseInvalidDiscMessage(unknown)", [&] { return text(s.verboseInvalidDiscMessage(kivrlibdrive::MEDIA_UNKNOWN)); }, "VERBOSE_INVALID_MEDIA_MESSAGE{InsertedMedia=BDRMedia,RequiredMedia=DVD+RW}"},
        {"verboseInvalidDiscMessage(DVD-RAM)", [&] { return text(s.verboseInvalidDiscMessage(kivrlibdrive::MEDIA_DVDRAM)); }, "VERBOSE_INVALID_MEDIA_MESSAGE{InsertedMedia=DVDRAMMedia,RequiredMedia=DVD+RW}"},
        {"mediaIsReadOnlyMessage", [&] { return text(s.mediaIsReadOnlyMessage()); }, "MEDIA_READ_ONLY{MediaName=DVD+RW}"},
        {"maxUsageLimitReached", [&] { return text(s.maxUsageLimitReached(7)); }, "MEDIA_USAGE_LIMIT_REACHED{MediaName=DVD+RW,MaxNumberOfWrites=7}"},
        {"checkingDiscUsageValueEvent", reports([&] { s.checkingDiscUsageValueEvent(); }), "informative CHECKING_DISC_MAX_USAGE_LIMIT{} line 37"},
        {"maxUsageForMediaReachedEvent", [&] { return unraised(s.maxUsageForMediaReachedEvent(9)); }, "MAX_USAGE_LIMIT_REACHED{MediaName=DVD+RW,MaxNumberOfWrites=9}"},
        {"writingSectorMessage", reports([&] { s.writingSectorMessage(5, 10, 3); }), "progress WRITING_BLOCK{WriteBlock=5,TotalBlocks=10} every 2000"},
        {"readingSectorMessage", reports([&] { s.readingSectorMessage(6, 10); }), "progress CHECKING_BLOCK{WriteBlock=6,TotalBlocks=10} every 2000"},
        {"noMediaWarningEvent", reports([&] { s.noMediaWarningEvent(); }), "warning ERROR_NO_MEDIA{} line 388"},
        {"unableToGetDriveGeometryEvent", reports([&] { s.unableToGetDriveGeometryEvent(); }), "warning UNABLE_TO_GET_DRIVE_GEOMETRY{} line 394"},
        {"blankingDiscMessage", reports([&] { s.blankingDiscMessage(); }), "progress BLANKING_MEDIA"},
        {"failedBlankingDiscEvent", reports([&] { s.failedBlankingDiscEvent(0x3A00); }), "error ERROR_ERASING_MEDIA{ScsiError=3A00} line 312"},
        {"formattingDiscMessage", reports([&] { s.formattingDiscMessage(); }), "progress FORMATTING_MEDIA"},
        {"failedFormattingDiscEvent", reports([&] { s.failedFormattingDiscEvent(5); }), "error ERROR_FORMATTING_MEDIA{ScsiError=0005} line 312"},
        {"closingMediaMessage", reports([&] { s.closingMediaMessage(); }), "progress CLOSING_SESSION"},
        {"failedClosingDiscEvent", reports([&] { s.failedClosingDiscEvent(0xAB10); }), "error ERROR_CLOSING_MEDIA{ScsiError=AB10} line 312"},
        {"testCancelledEvent", reports([&] { s.testCancelledEvent(); }), "warning TEST_CANCELLED_NO_MEDIA{} line 167"},
        {"ejectFailedEvent", reports([&] { s.ejectFailedEvent(0x12345); }), "error ERROR_EJECTING_MEDIA{ScsiError=12345} line 312"},
        {"updateProgressMessage", reports([&] { s.updateProgressMessage(); }), "progress WAITING_FOR_UNIT_READY"},
        {"errorStartingDriveEvent", reports([&] { s.errorStartingDriveEvent(0x401); }), "error DRIVE_ERROR_STARTING_OPTICAL_DRIVE{ScsiError1=0401} line 201"},
        {"errorRequiredSpeedNotReached", reports([&] { s.errorRequiredSpeedNotReached(1385, 1108); }), "error ERROR_SPEED_NOT_REACHED{RequestedSpeed=1385,ActualSpeed=1108} line 372"},
        {"obtainingDriveCapacityEvent", reports([&] { s.obtainingDriveCapacityEvent(); }), "progress OBTAINING_DRIVE_CAPACITY"},
        {"ejectDiscEvent", reports([&] { s.ejectDiscEvent(); }), "progress EJECTING_MEDIA"},
        {"incompatibleMediumInstalledEvent", reports([&] { s.incompatibleMediumInstalledEvent(&ownEvent); }), "informative SOME_EVENT{} line 179"},
        {"usagesLeftInfoEvent", reports([&] { s.usagesLeftInfoEvent(s.usagesLeftEvent(3)); }), "informative CURRENT_USAGE_VALUE{NumberOfUsesRemaining=3} line 183"},
        {"insertMediaProgressMessage", reports([&] { s.insertMediaProgressMessage(); }), "progress WAITING_FOR_USER_TO_INSERT_MEDIA"},
        {"flushingCacheProgressMessage", reports([&] { s.flushingCacheProgressMessage(); }), "progress FLUSHING_DRIVE_BUFFER"},
        {"loadingMediaProgressMessage", reports([&] { s.loadingMediaProgressMessage(); }), "progress LOADING_MEDIA{MediaName=DVD+RW}"},
        {"runningAtSpeedMessage", reports([&] { s.runningAtSpeedMessage(1765); }), "progress RUNNING_AT_SPEED{WriteSpeedIndex=1765,WriteSpeed=9}"},
        {"communicationCRCErrorEvent", reports([&] { s.communicationCRCErrorEvent(); }), "error COMMUNICATION_CRC_ERROR{} line 462"},
        {"writeTimeoutEvent", reports([&] { s.writeTimeoutEvent(4096); }), "error LONG_WRITE_IN_PROGRESS_ERROR{WriteSector=4096} line 469"},
        {"noMediaEvent", [&] { return unraised(s.noMediaEvent()); }, "NO_MEDIA_PRESENT{MediaName=DVD+RW}"},
        {"invalidMediaEvent", [&] { return unraised(s.invalidMediaEvent()); }, "INCORRECT_MEDIA_INSERTED{MediaName1=DVD+RW,MediaName2=DVD+RW}"},
        {"mediaFullEvent", [&] { return unraised(s.mediaFullEvent()); }, "MEDIA_FULL_EVENT{MediaName=DVD+RW}"},
        {"mediaClosedEvent", [&] { return unraised(s.mediaClosedEvent()); }, "MEDIA_CLOSED_EVENT{MediaName=DVD+RW}"},
        {"mediaNotEmptyEvent", [&] { return unraised(s.mediaNotEmptyEvent()); }, "ERROR_DISC_NOT_EMPTY{MediaName=DVD+RW}"},
        {"mediaNotApprovedEvent", [&] { return unraised(s.mediaNotApprovedEvent()); }, "TestFailedOnNonQualMedia{CustomerName=CustomerName}"},
        {"writeFailedEvent", reports([&] { s.writeFailedEvent(77, 0x0C00); }), "error DRIVE_SCSI_WRITE_FAILURE{WriteSector=77,ScsiError1=0C00} line 214"},
        {"readFailedEvent", reports([&] { s.readFailedEvent(78, 0x1100); }), "error RW_TEST_READ_ERROR{ReadSector=78,ScsiError1=1100} line 227"},
        {"showSupportedCommandError", reports([&] { WindowsOpticalDriveStrings::showSupportedCommandError(L"GET PERFORMANCE", 0x2000); }), "error SUPPORTED_COMMAND_ERROR{ScsiError=2000,ScsiCommand=GET PERFORMANCE} line 456"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.operation);
        EXPECT_EQ(whatItDid(host, c.call), c.did);
    }
}

TEST(OpticalStringsTest, NumbersAreNumbersAndStatusesAreTexts) {
    testsupport::RecordingHost host;
    testsupport::ScopedHost installed(host);
    HostStrings s;
    s.writeFailedEvent(77, 0x0C00);
    const auto event = host.events().back();
    EXPECT_EQ(event.get(L"WriteSector").kind(), quel5::Value(77ULL).kind());
    EXPECT_EQ(event.get(L"ScsiError1").kind(), quel5::Value(L"0C00").kind());
}

}  // namespace

// The read/write test's media handling: taking the drive, checking the disc and prompting for
// another one, loading and ejecting, the free-space check and erasing a disc before the test.
#include <functional>
#include <memory>

#include "ReadWriteTestLog.h"
#include "libDrive/Exceptions.h"
#include "libDrive/ReadWriteTest.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {

using readwrite::log;

namespace {

// The prompt buttons, as the host's message boxes number them.
constexpr unsigned int kOkCancel = 1;
constexpr unsigned int kYesNo = 4;

constexpr uint32_t kPercentAfterErase = 40;

const wchar_t* const kNoMessageBox = L"Could not create or display a message box";

}  // namespace

struct ReadWriteTest::MediaProblem {
    QuelString message;
    // Reports the problem and throws the exception that ends the run.
    std::function<void()> endRun;
};

void ReadWriteTest::getExclusiveDriveAccess() { drive.getExclusiveDriveAccess(); }

void ReadWriteTest::displayPrompt(const QuelString& message, const QuelString& title,
                                  quel5::MessageBox2_Options options) {
    const std::unique_ptr<quel5::MessageBox2> box(
        quel5::DiagModule::createMessageBox2(message, title, 0, options, 0, true));
    if (!box || !box->display()) {
        log(1, 1735, kNoMessageBox);
        throw CannotRun(kNoMessageBox);
    }
    box->wait(0);
    const int answer = box->getReturn();
    if (answer == quel5::MB2_OK || answer == quel5::MB2_CANCEL) return;
    // Whatever ends the run leaves the tray closed.
    drive.loadDisc();
    if (answer == quel5::MB2_ABORT || answer == quel5::MB2_IGNORE || answer == quel5::MB2_YES) {
        throw UserAborted(L"Testing Aborted by User");
    }
    throw NoMediaPresent(L"");
}

void ReadWriteTest::ejectDisc() {
    strings.ejectDiscEvent();
    drive.unlockTray();
    try {
        drive.ejectDisc();
    } catch (const EjectError& failed) {
        strings.ejectFailedEvent(failed.getStatus());
        throw;
    }
    // Another disc may come in: its qualification is not known yet.
    qualificationResult = false;
    qualificationKnown = false;
    discEjected = true;
    firstRun = false;
}

unsigned long ReadWriteTest::waitForLoadComplition() {
    strings.loadingMediaProgressMessage();
    drive.loadDisc();
    strings.updateProgressMessage();
    return drive.makeSureUnitIsReady();
}

void ReadWriteTest::insertMedia(QuelString message, QuelString title) {
    strings.insertMediaProgressMessage();
    const unsigned long status = static_cast<unsigned long>(drive.TestUnitReady());
    if (!drive.noMediaPresent(status)) drive.ejectDisc();
    displayPrompt(message, title, kOkCancel);
    waitForLoadComplition();
}

bool ReadWriteTest::isMediaReadOnly(MediaType type) {
    switch (type) {
        case MEDIA_CDROM:
        case MEDIA_DVDROM:
        case MEDIA_BDROM:
        case MEDIA_HDDVDROM:
            return true;
        default:
            return drive.isMediaCopyProtected();
    }
}

bool ReadWriteTest::findMediaProblem(MediaProblem& problem) {
    const unsigned long status = drive.makeSureUnitIsReady();
    if (drive.noMediaPresent(status)) {
        problem = {strings.noMediaMessage(), [this] {
                       strings.noMediaWarningEvent();
                       throw NoMediaPresent(L"");
                   }};
        return true;
    }
    if (drive.unknownError(status)) {
        // Not a question of the disc: another one would not help.
        strings.errorStartingDriveEvent(status);
        throw TestFailedException(static_cast<unsigned int>(status));
    }
    const auto invalidMedia = [this](quel5::Event* event) {
        return [this, event] {
            if (event != nullptr) strings.incompatibleMediumInstalledEvent(event);
            throw InvalidMediaException(L"");
        };
    };
    if (parameters.checkRequiredMedia() &&
        (drive.incompatibleMediaInstalled(status) || !drive.requiredDisc())) {
        problem = {strings.verboseInvalidDiscMessage(drive.getCurrentMediaType()),
                   invalidMedia(strings.invalidMediaEvent())};
        return true;
    }
    if (parameters.checkWritableMedia() && isMediaReadOnly(drive.getCurrentMediaType())) {
        problem = {strings.mediaIsReadOnlyMessage(), invalidMedia(nullptr)};
        return true;
    }
    eraseAgreed = false;
    if (!drive.emptyDisc()) {
        const bool rewritable = driveSays(&WindowsOpticalDrive::RWDisc) ||
                                driveSays(&WindowsOpticalDrive::CDRWDisc) ||
                                driveSays(&WindowsOpticalDrive::DvdminusrwDisc) ||
                                driveSays(&WindowsOpticalDrive::DvdplusrwDisc) ||
                                driveSays(&WindowsOpticalDrive::BdreDisc);
        if (rewritable && parameters.eraseNonBlankMedia()) {
            // Returning from the question is the agreement; declining it ends the run.
            if (parameters.promptUserForMedia()) {
                displayPrompt(strings.nonBlankMediaPrompt(), strings.promptTitle(), kYesNo);
                eraseAgreed = true;
            }
        } else if (drive.completeDisc()) {
            problem = {strings.diskCompleteMessage(), invalidMedia(strings.mediaClosedEvent())};
            return true;
        } else if (parameters.blankMediaOnly()) {
            problem = {strings.blankDiscRequiredMessage(),
                       invalidMedia(strings.mediaNotEmptyEvent())};
            return true;
        }
    }
    if (parameters.limitMediaUsage()) {
        usageCount = numberOfTimesMediaUsedForTesting();
        const unsigned int limit = parameters.mediaUsageLimitNumber();
        if (usageCount >= limit) {
            problem = {strings.maxUsageLimitReached(static_cast<unsigned short>(limit)),
                       invalidMedia(strings.maxUsageForMediaReachedEvent(limit))};
            return true;
        }
        strings.usagesLeftInfoEvent(strings.usagesLeftEvent(limit - usageCount));
    }
    return false;
}

void ReadWriteTest::checkForMedia() {
    MediaProblem problem;
    unsigned int prompts = 0;
    while (findMediaProblem(problem)) {
        const unsigned int limit = parameters.maxMediaPrompts();
        if (!parameters.promptUserForMedia() || (limit != 0 && prompts >= limit)) {
            problem.endRun();
        }
        ++prompts;
        insertMedia(problem.message, strings.InsertMediaTitle());
    }
    if (firstRun && parameters.promptUserForMedia()) {
        displayPrompt(strings.pretestPrompt(), strings.promptTitle(), kOkCancel);
    }
    try {
        getDriveGeometry();
    } catch (const InternalException&) {
        strings.unableToGetDriveGeometryEvent();
        throw;
    }
}

bool ReadWriteTest::enoughFreeSpaceOnDisc() {
    const unsigned long long total = drive.getTotalSectorsOnMedia();
    const unsigned long long next = drive.getNextWritableAddress();
    const unsigned long long free = next < total ? total - next : 0;
    if (free < static_cast<unsigned long long>(sectorsToTestCount)) {
        strings.incompatibleMediumInstalledEvent(strings.mediaFullEvent());
        return false;
    }
    return true;
}

void ReadWriteTest::eraseDiscIfRequired() {
    if (!parameters.eraseNonBlankMedia() || !(parameters.blankMediaOnly() || eraseAgreed)) return;
    const bool blank = driveSays(&WindowsOpticalDrive::CDRWDisc) ||
                       driveSays(&WindowsOpticalDrive::DvdminusrwDisc);
    const bool format = !blank && (driveSays(&WindowsOpticalDrive::DvdplusrwDisc) ||
                                   driveSays(&WindowsOpticalDrive::BdreDisc));
    if ((!blank && !format) || drive.emptyDisc()) return;
    const unsigned int seconds = parameters.eraseTimeSeconds();
    try {
        if (blank) {
            strings.blankingDiscMessage();
            drive.blankDisc(seconds, 0, kPercentAfterErase);
        } else {
            strings.formattingDiscMessage();
            drive.formatDisc(seconds, 0, kPercentAfterErase);
        }
    } catch (const TestFailedException& failed) {
        if (blank) {
            strings.failedBlankingDiscEvent(failed.getStatus());
        } else {
            strings.failedFormattingDiscEvent(failed.getStatus());
        }
        throw;
    }
    basePercent = kPercentAfterErase;
}

}  // namespace kivrlibdrive

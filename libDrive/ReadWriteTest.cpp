// The read/write test's driver: construction, the mapping of every outcome to a result (Run),
// the reruns after a failed run (runTest) and the phase order of one run (doTesting).
#include "libDrive/ReadWriteTest.h"

#include <cstdlib>

#include "ClassLog.h"
#include "ReadWriteTestLog.h"
#include "kiv/KIVLocale.h"
#include "kiv/Resource.h"
#include "kiv/System.h"
#include "libDrive/Exceptions.h"
#include "libDrive/LibDriveStrings.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {
namespace readwrite {

kiv::Logger* logger() {
    static kiv::Logger* slot = nullptr;
    return classLogger(slot, L"libDrive.ReadWriteTest");
}

void log(int priority, int line, const kiv::String& text) {
    logger()->log(priority, number(static_cast<uint64_t>(line)) + L" " + text);
}

}  // namespace readwrite

using readwrite::kSource;
using readwrite::log;

namespace {

// The prompt buttons, as the host's message boxes number them.
constexpr unsigned int kOkOnly = 0;
constexpr unsigned int kYesNoCancel = 3;

// Without the setting a failed run is not run again.
constexpr uint16_t kRunsWithoutSetting = 1;

uint16_t runsFromSetting() {
    kiv::String text;
    uint64_t runs = 0;
    if (kiv::Resource::getSetting(L"libDrive", L"ReRunTestOnFailureCount.value",
                                  KIVLocale::getGlobal(), text) &&
        text.trim().toUnsigned(runs)) {
        // Parsed as a 16-bit number: larger values keep their low bits.
        return static_cast<uint16_t>(runs);
    }
    return kRunsWithoutSetting;
}

}  // namespace

ReadWriteTest::ReadWriteTest(WindowsOpticalDrive& testedDrive,
                             WindowsOpticalDriveParameters& testParameters,
                             WindowsOpticalDriveStrings& testStrings)
    : drive(testedDrive),
      parameters(testParameters),
      strings(testStrings),
      usageFlag(false),
      speedListSet(false),
      currentSpeed(0),
      speedCount(0),
      writePass(-2),
      readPass(-1),
      writeBuffer(nullptr),
      readBuffer(nullptr),
      startSector(0),
      endSector(0),
      sectorsToTestCount(0),
      bufferSize(0),
      bytesPerSector(0),
      sectorsPerTransfer(0),
      errorCount(0),
      usageCount(0),
      rerunCount(0),
      basePercent(0),
      qualificationResult(false),
      qualificationKnown(false),
      firstRun(true),
      discEjected(false),
      qualifiedRerun(false),
      lastProgressTime(kiv::System::getCurrentTimeMilliseconds()),
      now(lastProgressTime),
      eraseAgreed(false) {
    const ScopedTrace trace(readwrite::logger(), L"ReadWriteTest::ReadWriteTest", kSource, 1178);
    autoRun.Disable(true);
    rerunCount = runsFromSetting();
}

ReadWriteTest::~ReadWriteTest() { releaseMemory(); }

quel5::TestResult ReadWriteTest::Run() {
    const ScopedTrace trace(readwrite::logger(), L"ReadWriteTest::Run", kSource, 1330);
    try {
        validateTestParameters();
    } catch (const InvalidRange& invalid) {
        log(4, 1336, invalid.getMessage());
        return quel5::TestResult::BADPARAMS;
    }
    try {
        runTest();
    } catch (const UserAborted& aborted) {
        if (parameters.notifyEraseOnAbort() && parameters.eraseMediaAfterTest()) {
            displayPrompt(strings.abortDetectedDiscEraseMessage(), strings.promptTitle(), kOkOnly);
        }
        eraseAfterTestComplition();
        log(3, 1349, aborted.getMessage());
        return quel5::TestResult::USERABORTED;
    } catch (const InternalException& internal) {
        log(4, 1354, internal.getMessage());
        log(1, 1355, L"ReadWriteTest::Run() caught an InternalException when running runTest()");
        return quel5::TestResult::INTERNALERROR;
    } catch (const InvalidMediaException& invalid) {
        log(4, 1360, invalid.getMessage());
        ejectDisc();
        return parameters.failOnMediaProblems() ? quel5::TestResult::FAIL
                                                : quel5::TestResult::INCORRECTMEDIA;
    } catch (const NoMediaPresent& noMedia) {
        log(4, 1366, noMedia.getMessage());
        return parameters.failOnMediaProblems() ? quel5::TestResult::FAIL
                                                : quel5::TestResult::NOMEDIA;
    } catch (const TestFailedException& failed) {
        eraseAfterTestComplition();
        log(4, 1372, failed.getMessage());
        return quel5::TestResult::FAIL;
    } catch (const EjectError& eject) {
        log(4, 1377, eject.getMessage());
        return quel5::TestResult::DEVICEBUSY;
    } catch (const CannotRun& cannot) {
        log(4, 1381, cannot.getMessage());
        return quel5::TestResult::CANNOTRUN;
    } catch (const TimedOutException& timedOut) {
        log(4, 1385, timedOut.getMessage());
        return quel5::TestResult::TIMEDOUT;
    } catch (const InvalidHandle& handle) {
        log(4, 1389, handle.getMessage());
        return quel5::TestResult::NODEVICE;
    } catch (...) {
        log(1, 1393, L"ReadWriteTest::Run() caught cathc-all Exception when running runTest()");
        return quel5::TestResult::INTERNALERROR;
    }
    eraseAfterTestComplition();
    return drive.getPASSCondition(parameters.failOnMediaProblems());
}

void ReadWriteTest::stopBackgroundFormatting() {
    if (!drive.DvdplusrwDisc()) return;
    try {
        drive.stopBackGroundFormatting();
    } catch (const FailedStoppingBGFormat&) {
        // The disc stays usable with its format running on; nothing to report.
    }
}

void ReadWriteTest::runTest() {
    const ScopedTrace trace(readwrite::logger(), L"ReadWriteTest::runTest", kSource, 1405);
    try {
        doTesting();
    } catch (const TestFailedException& failed) {
        drive.unlockTray();
        log(1, 1412, L"ReadWriteTest::runTest() passed m_Drive.unlockTray()");
        drive.releaseExclusiveAccess();
        log(1, 1414, L"ReadWriteTest::runTest() passed m_Drive.releaseExclusiveAccess()");
        log(4, 1415, failed.getMessage());
        eraseAfterTestComplition();
        log(1, 1417, L"ReadWriteTest::runTest() passed m_Drive.eraseAfterTestComplition()");
        if (!parameters.promptUserForMedia()) {
            stopBackgroundFormatting();
            throw;
        }
        rerunAfterFailure();
        return;
    }
    stopBackgroundFormatting();
}

void ReadWriteTest::promptForRerun(const QuelString& message, bool showNotQualified) {
    try {
        displayPrompt(message, strings.promptTitle(), kYesNoCancel);
    } catch (const UserAborted& aborted) {
        if (showNotQualified) {
            displayPrompt(strings.mediaNotQualified(), strings.promptTitle(), kOkOnly);
        }
        if (parameters.failOnMediaProblems()) throw TestFailedException(aborted.getMessage());
        throw;
    }
}

void ReadWriteTest::rerunAfterFailure() {
    log(1, 1424, L"ReadWriteTest::runTest() passed m_TestParameters.promptUserForMedia() done");
    stopBackgroundFormatting();
    bool notQualified = false;
    if (parameters.checkForqualifiedMedia()) notQualified = !mediaQualified();
    log(1, 1431, L"ReadWriteTest::runTest() passed m_TestParameters.checkForqualifiedMedia() done");
    if (parameters.reRunNonQualMediaFailure()) {
        log(1, 1435,
            L"ReadWriteTest::runTest() passed m_TestParameters.reRunNonQualMediaFailure() true");
        if (mediaQualified() && parameters.qualifiedMediaRerunAllowed()) qualifiedRerun = true;
        promptForRerun(qualifiedRerun ? strings.rerunTest() : strings.rerunTestUseApprovedMedia(),
                       !qualifiedRerun);
    } else {
        log(1, 1466,
            L"ReadWriteTest::runTest() passed m_TestParameters.reRunNonQualMediaFailure() false");
        if (!parameters.qualifiedMediaRerunAllowed() && notQualified) {
            displayPrompt(strings.mediaNotQualified(), strings.promptTitle(), kOkOnly);
        }
        promptForRerun(strings.rerunTest(), notQualified);
    }
    do {
        drive.unlockTray();
        log(1, 1508, L"ReadWriteTest::runTest() passed m_Drive.unlockTray()");
        ejectDisc();
        log(1, 1510, L"ReadWriteTest::runTest() passed m_Drive.ejectDisc()");
        firstRun = true;
        // Unguarded on purpose: a count of 0 wraps to 65535 and means "until one passes".
        rerunCount = static_cast<uint16_t>(rerunCount - 1);
        if (rerunCount == 0) break;
        drive.resetVariableForSecondRun();
        firstRun = false;
        quel5::DiagModule::informative(LibDriveStrings::g_EventRerunTest, kSource, 1519);
        try {
            doTesting();
        } catch (const TestFailedException&) {
            drive.unlockTray();
            drive.releaseExclusiveAccess();
            stopBackgroundFormatting();
            if (parameters.checkForqualifiedMedia() && !mediaQualified()) {
                displayPrompt(strings.mediaNotQualified(), strings.promptTitle(), kOkOnly);
            }
            if (parameters.reRunNonQualMediaFailure()) {
                if (mediaQualified()) qualifiedRerun = true;
                if (!qualifiedRerun) {
                    strings.incompatibleMediumInstalledEvent(strings.mediaNotApprovedEvent());
                    throw InvalidMediaException(L"");
                }
            }
            if (rerunCount == 0) throw TestFailedException(L"");
        }
    } while (rerunCount != 0);
    stopBackgroundFormatting();
    log(1, 1567, L"ReadWriteTest::runTest() DONE!!");
}

void ReadWriteTest::doTesting() {
    const ScopedTrace trace(readwrite::logger(), L"ReadWriteTest::doTesting", kSource, 1590);
    startTimingTest();
    getExclusiveDriveAccess();
    drive.lockTray();
    releaseMemory();
    checkForMedia();
    getSupportedWriteSpeeds();
    setWriteParameters();
    // A derived drive that says the disc is rewritable has room wherever it writes.
    if (!driveSays(&WindowsOpticalDrive::RWDisc) && !enoughFreeSpaceOnDisc()) return;
    eraseDiscIfRequired();
    allocateMemory();
    prepareDriveForWrite();
    for (uint32_t index = 0; index < speedCount; ++index) {
        setSpeed(speeds[index]);
        getNextWritableAddress();
        write();
        flushBuffer();
        log(1, 1612, L"ReadWriteTest::doTesting() pass flushBuffer()");
        closeDisc();
        log(1, 1615, L"ReadWriteTest::doTesting() pass closeDisc()");
        readCompare();
        log(1, 1618, L"ReadWriteTest::doTesting() pass readCompare()");
    }
    drive.unlockTray();
    log(1, 1623, L"ReadWriteTest::doTesting() pass m_Drive.unlockTray()");
    endTimingTest();
    log(1, 1626, L"ReadWriteTest::doTesting() pass endTimingTest");
    rerunCount = 0;
}

void ReadWriteTest::validateTestParameters() {
    sectorsToTestCount = parameters.totalSectorsToTest();
    if (sectorsToTestCount <= 0) {
        throw InvalidRange(L"The total number of sectors to tests is less than 0");
    }
}

}  // namespace kivrlibdrive

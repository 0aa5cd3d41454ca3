// kivrlibdrive::ReadWriteTest: the optical writer's write-and-verify test.
//
// The host builds it over a drive, the test's settings and its texts (all three owned by the
// host and outliving the test) and calls Run(). One run takes the drive, checks and prompts for
// a disc, writes the test area at every write speed the drive offers, flushes, closes the disc
// as its kind needs, reads the area back and compares it; a failed run may be run again after
// prompts. Every exception that ends a run becomes one quel5::TestResult in Run.
//
// Each phase is a virtual member, declared in the order hosts compiled against this header
// depend on; never reorder them. The test always calls its phases through these slots, so a
// host's subclass can replace any of them; the fields a phase sets are protected for that.
//
// Events are raised from "libDrive/ReadWriteTest"; log lines go to "libDrive.ReadWriteTest",
// each behind the number of the line that writes it. The progress percentage keeps totals for
// the whole process (fixed by the first test object that reports one). Not re-entrant: tests
// run one at a time on the host's test thread.
#pragma once

#include <cstdint>

#include "kiv/Array.h"
#include "libDrive/Export.h"
#include "libDrive/windows/MediaType.h"
#include "libDrive/windows/WindowsOpticalDrive.h"
#include "libDrive/windows/WindowsOpticalDriveStrings.h"
#include "os/Clock.h"
#include "quel5/MessageBox2.h"
#include "quel5/QuelString.h"
#include "quel5/TestResult.h"
#include "storage/AutoRun.h"

namespace kivrlibdrive {

class LIBDRIVE_API ReadWriteTest {
public:
    // Not owned; all three must outlive the test. Switches autoplay off for the object's life
    // and reads the runs allowed from the setting "libDrive" / "ReRunTestOnFailureCount.value"
    // (1, a single run, when it is absent).
    ReadWriteTest(WindowsOpticalDrive& drive, WindowsOpticalDriveParameters& parameters,
                  WindowsOpticalDriveStrings& strings);
    // Copies every field, the buffer pointers included: only one of the two may keep running.
    ReadWriteTest(const ReadWriteTest& other) = default;
    ReadWriteTest& operator=(const ReadWriteTest&) = delete;
    // Frees both buffers.
    virtual ~ReadWriteTest();

    // The host's only entry point: validates the settings, runs the test (with its reruns),
    // erases the disc when asked and maps the outcome to a result. Exceptions thrown by the
    // prompt or eject that a failure handler shows are not caught.
    virtual quel5::TestResult Run();

protected:
    // One run, then the prompts and reruns after a failed one.
    virtual void runTest();
    // One run: the phases in their fixed order. Returns early, with the tray still locked, when
    // the disc has too little free space.
    virtual void doTesting();
    // Checks the disc and prompts for another one until it fits; then reads the geometry.
    // Throws NoMediaPresent, InvalidMediaException or TestFailedException when it will not.
    virtual void checkForMedia();
    // Throws InvalidRange unless the sectors to test are more than 0.
    virtual void validateTestParameters();
    virtual void setWriteParameters();
    virtual void getExclusiveDriveAccess();
    // Blanks or formats a rewritable disc that is not empty before the test (to 40 % of the
    // bar) when the settings or the person allowed it. Throws TestFailedException on failure.
    virtual void eraseDiscIfRequired();
    virtual void prepareDriveForWrite();
    virtual void getSupportedWriteSpeeds();
    // Speed in kB/s; 0xFFFF is the drive's maximum. A speed the drive could not reach is
    // reported and tolerated; a refused one throws TestFailedException.
    virtual void setSpeed(unsigned int speed);
    // The write pass over [startSector, endSector).
    virtual void write();
    virtual void flushBuffer();
    // The verify pass: reads back and compares, re-reading from the medium on a mismatch.
    virtual void readCompare();
    // Unlocks and ejects; forgets the disc's qualification. Throws EjectError.
    virtual void ejectDisc();
    // Two buffers of bufferSize bytes, the write buffer filled with 0xBD. Throws
    // InternalException when they cannot be had.
    virtual void allocateMemory();
    virtual void releaseMemory();
    // Progress, at most once a second, for the sector `current` of the write or verify pass.
    virtual void showWriteProgress(const unsigned long long& current);
    virtual void showReadProgress(const unsigned long long& current);
    // Reports the percentage for `done` sectors of all passes of all speeds.
    virtual void updateProgressPercentage(const unsigned long long& done);
    // Errors the passes tolerate before the test fails. 0.
    virtual unsigned int GetMaxErrors();
    // Sets startSector, sectorsPerTransfer and endSector for the next pass. Throws
    // TestFailedException when the drive cannot say where to write.
    virtual void getNextWritableAddress();
    virtual unsigned int sectorsToTest();
    // True when the disc is approved test media; remembered until the next eject.
    virtual bool mediaQualified();
    virtual bool compareDiscandManufacturerID();
    virtual bool compareLeadInLeadOut();
    // Shows a box and returns when it is answered 1 or 2. Throws CannotRun when no box can be
    // shown, UserAborted for the answers 3, 5 and 6, NoMediaPresent for any other.
    virtual void displayPrompt(const QuelString& message, const QuelString& title,
                               quel5::MessageBox2_Options options);
    // Ejects the disc in the drive, asks for another one and waits for it.
    virtual void insertMedia(QuelString message, QuelString title);
    // Loads the tray and waits until the drive is ready; answers its last status.
    virtual unsigned long waitForLoadComplition();
    virtual bool enoughFreeSpaceOnDisc();
    // Closes the written area as the disc's kind needs. Throws TestFailedException.
    virtual void closeDisc();
    // Blanks or formats a rewritable disc after the test when the settings ask for it; failures
    // are reported only.
    virtual void eraseAfterTestComplition();
    // Reads the geometry and sets bytesPerSector, sectorsPerTransfer and bufferSize (also when
    // the drive throws InternalException, which goes on up).
    virtual void getDriveGeometry();
    // True for the pressed (ROM) kinds and copy-protected discs.
    virtual bool isMediaReadOnly(MediaType type);
    // The uses recorded on the disc's sector 0; 0 when it carries none or cannot be read.
    virtual unsigned short numberOfTimesMediaUsedForTesting();

    void startTimingTest();
    void endTimingTest();

    WindowsOpticalDrive& drive;
    WindowsOpticalDriveParameters& parameters;
    WindowsOpticalDriveStrings& strings;
    bool usageFlag;
    kiv::Array<unsigned int> speeds;
    bool speedListSet;
    uint32_t currentSpeed;
    uint32_t speedCount;
    int32_t writePass;
    int32_t readPass;
    unsigned char* writeBuffer;  // owned, bufferSize bytes
    unsigned char* readBuffer;   // owned, bufferSize bytes
    uint64_t startSector;
    uint64_t endSector;  // exclusive
    int64_t sectorsToTestCount;
    uint32_t bufferSize;  // bytes
    uint32_t bytesPerSector;
    uint32_t sectorsPerTransfer;
    uint32_t errorCount;
    uint16_t usageCount;
    uint16_t rerunCount;
    uint32_t basePercent;
    bool qualificationResult;
    bool qualificationKnown;
    bool firstRun;
    bool discEjected;
    bool qualifiedRerun;
    libStorage::AutoRun autoRun;
    os::LocalTime startTime;
    os::LocalTime endTime;
    uint64_t lastProgressTime;  // milliseconds since 1970
    uint64_t now;
    // The person agreed to erase the non-empty rewritable disc the media check found.
    bool eraseAgreed;

private:
    // What the media check found wrong with the disc in the drive: the text asking for another
    // one, and how the run ends when no other one is asked for.
    struct MediaProblem;
    bool findMediaProblem(MediaProblem& problem);
    void stopBackgroundFormatting();
    void rerunAfterFailure();
    void promptForRerun(const QuelString& message, bool showNotQualified);
    void prepareWriteBuffer(uint64_t current);
    // Counts one sector error; throws TestFailedException(`tooMany`) past the limit.
    void countError(const wchar_t* tooMany);
    // A media predicate of the drive; the library's own drive class is known to answer false
    // and is not asked.
    bool driveSays(bool (WindowsOpticalDrive::*predicate)());
};

}  // namespace kivrlibdrive

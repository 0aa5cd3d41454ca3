// A scripted optical drive, settings and texts for the read/write test, on the virtual clock and
// with a recording host and a memory log.
//
// The drive keeps what is written in memory and reads it back; its actions are recorded in
// order ("writeSectors(3)", "closeTrack(0)"), its queries are not. A fault set for an operation
// runs on each of its calls and may throw.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kiv/Log.h"
#include "libDrive/ReadWriteTest.h"
#include "support/RecordingHost.h"
#include "support/ScopedVirtualClock.h"

namespace rwtest {

using namespace kivrlibdrive;

class ScriptedDrive : public WindowsOpticalDrive {
public:
    using WindowsOpticalDrive::WindowsOpticalDrive;

    std::vector<std::string> calls;
    std::map<std::string, std::function<void()>> faults;
    std::set<std::string> mediaIs;  // predicates answering true: "CDRWDisc", "BdreDisc", ...
    unsigned long readyStatus = 0;
    bool empty = true;
    bool complete = false;
    MediaType mediaType = MEDIA_DVDPLUSR;
    kiv::Array<unsigned int> speeds{0xFFFF};
    unsigned int nextWritable = 0;
    unsigned long long capacity = 2000000;
    std::map<unsigned int, std::vector<unsigned char>> disc;  // sector -> its bytes
    // Changes what a read returns: (lba, plainRead, buffer).
    std::function<void(unsigned int, bool, unsigned char*)> readHook;
    kiv::String discId, makerId;
    kiv::Array<unsigned int> leadIn{97, 26, 66}, leadOut{79, 59, 74};

    void lockTray() override { act("lockTray"); }
    void unlockTray() override { act("unlockTray"); }
    void getExclusiveDriveAccess() override { act("getExclusiveDriveAccess"); }
    void releaseExclusiveAccess() override { act("releaseExclusiveAccess"); }
    void ejectDisc() override { act("ejectDisc"); }
    void loadDisc() override { act("loadDisc"); }
    void resetVariableForSecondRun() override { act("resetVariableForSecondRun"); }
    void setWriteParameters() override { act("setWriteParameters"); }
    void prepareForWrite() override { act("prepareForWrite"); }
    void flushCache() override { act("flushCache"); }
    void closeSession() override { act("closeSession"); }
    void stopBackGroundFormatting() override { act("stopBackGroundFormatting"); }
    void getDriveGeometry() override { act("getDriveGeometry"); }
    void setSpeed(unsigned int speed) override { act("setSpeed", std::to_string(speed)); }
    void closeTrack(unsigned long long track) override { act("closeTrack", std::to_string(track)); }
    void blankDisc(unsigned int s, unsigned int from, unsigned int to) override;
    void formatDisc(unsigned int s, unsigned int from, unsigned int to) override;
    kiv::Array<unsigned int> getSupportedWriteSpeeds() override;
    unsigned int getNextWritableAddress() override;
    void writeSectors(const unsigned int& lba, const unsigned short& count, const void* buffer,
                      const unsigned long& bytes) override;
    void readSectors(const unsigned int& lba, unsigned short count, void* buffer,
                     unsigned long bytes, bool plainRead) override;
    quel5::TestResult getPASSCondition(bool) override { return quel5::TestResult::PASS; }

    unsigned long makeSureUnitIsReady() override { return readyStatus; }
    long TestUnitReady() override { return static_cast<long>(readyStatus); }
    bool emptyDisc() override { return empty; }
    bool completeDisc() override { return complete; }
    bool requiredDisc() override { return true; }
    bool isMediaCopyProtected() override { return false; }
    MediaType getCurrentMediaType() override { return mediaType; }
    unsigned long long getTotalSectorsOnMedia() const override { return capacity; }
    unsigned long getBytesPerSector() const override { return 2048; }
    kiv::String getDiscID() override { return act("getDiscID"), discId; }
    kiv::String getDiscManufacturerID() override { return act("getDiscManufacturerID"), makerId; }
    kiv::String getBLUERAYDiscID() override { return act("getBLUERAYDiscID"), discId; }
    kiv::String getBLUERAYDiscManufacturerID() override { return act("getBDMaker"), makerId; }
    kiv::Array<unsigned int> getLeadInTime() override { return act("getLeadInTime"), leadIn; }
    kiv::Array<unsigned int> getLeadOutTime() override { return act("getLeadOutTime"), leadOut; }
    bool CDRDisc() override { return mediaIs.count("CDRDisc") != 0; }
    bool CDRWDisc() override { return mediaIs.count("CDRWDisc") != 0; }
    bool DvdminusrDisc() override { return mediaIs.count("DvdminusrDisc") != 0; }
    bool DvdminusrwDisc() override { return mediaIs.count("DvdminusrwDisc") != 0; }
    bool DvdminusrDLDisc() override { return mediaIs.count("DvdminusrDLDisc") != 0; }
    bool DvdplusrDisc() override { return mediaIs.count("DvdplusrDisc") != 0; }
    bool DvdplusrwDisc() override { return mediaIs.count("DvdplusrwDisc") != 0; }
    bool DvdplusrDLDisc() override { return mediaIs.count("DvdplusrDLDisc") != 0; }
    bool BdrDisc() override { return mediaIs.count("BdrDisc") != 0; }
    bool BdreDisc() override { return mediaIs.count("BdreDisc") != 0; }
    bool RWDisc() override { return mediaIs.count("RWDisc") != 0; }

    // Records "name(arguments)" (or the bare name) and runs the fault of `name`.
    void act(const std::string& name, const std::string& arguments = "");
};

class ScriptedParameters : public WindowsOpticalDriveParameters {
public:
    bool regex = false, rerunNonQualified = false, required = true, blankOnly = false,
         prompt = false, eraseNonBlank = false, eraseAfter = false, notifyOnAbort = false,
         qualifiedRerun = false, checkQualified = false, writable = true, failOnMedia = false,
         limitUsage = false;
    unsigned int eraseSeconds = 30, prompts = 0, usageLimit = 999999;
    long long sectors = 4;
    std::vector<kiv::String> approved;

    bool useRegex() override { return regex; }
    bool reRunNonQualMediaFailure() override { return rerunNonQualified; }
    bool checkRequiredMedia() override { return required; }
    bool blankMediaOnly() override { return blankOnly; }
    bool promptUserForMedia() override { return prompt; }
    bool eraseNonBlankMedia() override { return eraseNonBlank; }
    unsigned int eraseTimeSeconds() override { return eraseSeconds; }
    bool eraseMediaAfterTest() override { return eraseAfter; }
    bool notifyEraseOnAbort() override { return notifyOnAbort; }
    long long totalSectorsToTest() override { return sectors; }
    quel5::Value approvedMediaIds() override { return quel5::Value::stringArray(approved); }
    bool qualifiedMediaRerunAllowed() override { return qualifiedRerun; }
    bool checkForqualifiedMedia() override { return checkQualified; }
    unsigned int maxMediaPrompts() override { return prompts; }
    bool ejectMediaAtEnd() override { return false; }
    bool checkWritableMedia() override { return writable; }
    bool failOnMediaProblems() override { return failOnMedia; }
    bool limitMediaUsage() override { return limitUsage; }
    unsigned int mediaUsageLimitNumber() override { return usageLimit; }
};

class ScriptedStrings : public WindowsOpticalDriveStrings {
public:
    QuelString mediaName() override { return L"DVD+R"; }
    QuelString promptTitle() override { return L"Optical test"; }
};

// The test with its phases and fields open to the tests.
class OpenTest : public ReadWriteTest {
public:
    using ReadWriteTest::closeDisc;
    using ReadWriteTest::currentSpeed;
    using ReadWriteTest::endTimingTest;
    using ReadWriteTest::eraseAfterTestComplition;
    using ReadWriteTest::mediaQualified;
    using ReadWriteTest::ReadWriteTest;
    using ReadWriteTest::setSpeed;
    using ReadWriteTest::startSector;
    using ReadWriteTest::startTimingTest;
    unsigned int maxErrors = 0;
    unsigned int GetMaxErrors() override { return maxErrors; }
};

// `items` from index `from` on, joined by blanks.
std::string joined(const std::vector<std::string>& items, std::size_t from = 0);

class ReadWriteFixture : public ::testing::Test {
public:
    ReadWriteFixture();
    ~ReadWriteFixture() override;

    // The test's log lines at `priority`, in order.
    std::vector<std::string> logged(int priority) const;
    // True when a line at `priority` is exactly `line`.
    bool wasLogged(int priority, const std::string& line) const;
    // The last `count` drive calls (all when 0), joined by blanks.
    std::string lastCalls(std::size_t count = 0) const;
    // Every event key so far, joined by blanks.
    std::string eventKeys() const;
    // Drive calls named `name` (any argument).
    std::size_t callCount(const std::string& name) const;
    // Makes `operation` throw `e` on each call.
    template <typename E>
    void fail(const std::string& operation, const E& e) {
        drive.faults[operation] = [e] { throw e; };
    }
    // Makes the next call of `operation` throw `e`.
    template <typename E>
    void failOnce(const std::string& operation, const E& e) {
        drive.faults[operation] = [e, thrown = false]() mutable {
            if (!std::exchange(thrown, true)) throw e;
        };
    }

    testsupport::ScopedVirtualClock clock;
    testsupport::RecordingHost host;
    testsupport::ScopedHost installed{host};
    quel5::DiagDevice device{QuelString(L"\\\\.\\ScriptedCdRom")};
    ScriptedDrive drive{device};
    ScriptedParameters parameters;
    ScriptedStrings strings;

private:
    kiv::MemorySink log_;
};

}  // namespace rwtest

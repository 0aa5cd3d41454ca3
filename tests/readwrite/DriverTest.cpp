// The read/write test's driver: the result of every way a run ends, validation, the reruns
// after a failure, the phase order of a run and the total time.
#include <algorithm>
#include <functional>

#include "ScriptedOptical.h"
#include "kiv/Exception.h"
#include "kiv/Resource.h"
#include "libDrive/Exceptions.h"
#include "quel5/MessageBox2.h"

namespace rwtest {
namespace {

using R = quel5::TestResult;
using Calls = std::vector<std::string>;

class DriverTest : public ReadWriteFixture {};

TEST_F(DriverTest, EveryExceptionEndsTheRunWithItsResultActionAndLog) {
    const std::string internal =
        "1 1355 ReadWriteTest::Run() caught an InternalException when running runTest()";
    const std::string other =
        "1 1393 ReadWriteTest::Run() caught cathc-all Exception when running runTest()";
    struct Case {
        std::function<void()> raise;
        R result;
        std::string logged;  // priority, then the line
        std::string tail;    // the last drive calls
        bool failOnMedia = false;
    };
    const std::string ejected = "lockTray unlockTray ejectDisc";
    const Case cases[] = {
        {[] { throw UserAborted(L"stop"); }, R::USERABORTED, "3 1349 stop", "lockTray"},
        {[] { throw InternalException(L"i"); }, R::INTERNALERROR, internal, "lockTray"},
        {[] { throw InvalidMediaException(L"m"); }, R::INCORRECTMEDIA, "4 1360 m", ejected},
        {[] { throw InvalidMediaException(L"m"); }, R::FAIL, "4 1360 m", ejected, true},
        {[] { throw NoMediaPresent(L"x"); }, R::NOMEDIA, "4 1366  No media present: x", "lockTray"},
        {[] { throw NoMediaPresent(L"x"); }, R::FAIL, "4 1366  No media present: x", "lockTray",
         true},
        {[] { throw TestFailedException(L"f"); }, R::FAIL, "4 1372 f",
         "lockTray unlockTray releaseExclusiveAccess"},
        {[] { throw EjectError(L"e"); }, R::DEVICEBUSY, "4 1377 e", "lockTray"},
        {[] { throw CannotRun(L"c"); }, R::CANNOTRUN, "4 1381 c", "lockTray"},
        {[] { throw TimedOutException(L"t"); }, R::TIMEDOUT, "4 1385 t", "lockTray"},
        {[] { throw InvalidHandle(L"h"); }, R::NODEVICE, "4 1389 Invalid Handle : h", "lockTray"},
        {[] { throw kiv::InternalError(L"k"); }, R::INTERNALERROR, other, "lockTray"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.logged);
        drive.calls.clear();
        drive.faults["lockTray"] = c.raise;
        parameters.failOnMedia = c.failOnMedia;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), c.result);
        EXPECT_TRUE(wasLogged(c.logged[0] - '0', c.logged.substr(2)));
        const auto count = static_cast<std::size_t>(std::count(c.tail.begin(), c.tail.end(), ' '));
        EXPECT_EQ(lastCalls(count + 1), c.tail);
    }
}

TEST_F(DriverTest, NoSectorsToTestIsABadParameterBeforeTheDriveIsTouched) {
    for (const long long sectors : {0LL, -5LL}) {
        parameters.sectors = sectors;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), R::BADPARAMS);
        EXPECT_TRUE(drive.calls.empty());
        EXPECT_TRUE(wasLogged(
            4, "1336  Invalid Range: The total number of sectors to tests is less than 0"));
    }
}

TEST_F(DriverTest, AFailedRunIsRunAgainWhileRunsAreLeft) {
    const struct {
        const char* setting;  // nullptr: absent
        bool prompt;
        int failures;
        R result;
        std::size_t runs, ejects, rerunEvents;
    } cases[] = {
        {nullptr, true, 1, R::PASS, 1, 1, 0}, {"1", true, 1, R::PASS, 1, 1, 0},
        {"2", true, 1, R::PASS, 2, 1, 1},     {"2", true, 2, R::PASS, 2, 2, 1},
        {"0", true, 3, R::PASS, 4, 3, 3},     {"2", false, 1, R::FAIL, 1, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.setting ? c.setting : "absent") + " " +
                     std::to_string(c.failures));
        drive.calls.clear();
        host.clear();
        kiv::Resource::clear();
        if (c.setting)
            kiv::Resource::set(L"libDrive", L"ReRunTestOnFailureCount.value",
                               kiv::String::fromUtf8(c.setting));
        int failures = c.failures;
        drive.faults["getExclusiveDriveAccess"] = [&failures] {
            if (failures-- > 0) throw TestFailedException(L"f");
        };
        parameters.prompt = c.prompt;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), c.result);
        EXPECT_EQ(callCount("getExclusiveDriveAccess"), c.runs);
        EXPECT_EQ(callCount("ejectDisc"), c.ejects);
        EXPECT_EQ(callCount("resetVariableForSecondRun"), c.rerunEvents);
        const auto reruns = host.eventsWithKey("RERUN_TEST");
        ASSERT_EQ(reruns.size(), c.rerunEvents);
        for (const auto& event : reruns) EXPECT_EQ(event.line, 1519);
        // Every failed run gives the tray and the drive back before anything else.
        EXPECT_EQ(callCount("releaseExclusiveAccess"),
                  std::min(static_cast<std::size_t>(c.failures), c.runs));
    }
}

// Aborting the question whether to run again ends the run as stopped, or as failed when media
// problems fail runs; a disc that is not approved is said so first, and again on the abort.
TEST_F(DriverTest, AbortingTheRerunQuestionEndsTheRun) {
    const std::vector<int> okAbortOk = {quel5::MB2_OK, quel5::MB2_ABORT, quel5::MB2_OK};
    const struct {
        const char* name;
        bool failOnMedia;
        bool checkQualified;
        std::vector<int> answers;
        R result;
        std::string boxes;  // the key of each box shown
    } cases[] = {
        {"stopped", false, false, {quel5::MB2_ABORT}, R::USERABORTED, "ReRunTestPrompt"},
        {"failed", true, false, {quel5::MB2_ABORT}, R::FAIL, "ReRunTestPrompt"},
        {"not approved", false, true, okAbortOk, R::USERABORTED,
         "MEDIA_NOT_QUALIFIED ReRunTestPrompt MEDIA_NOT_QUALIFIED"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        host.clear();
        drive.calls.clear();
        kiv::Resource::clear();
        kiv::Resource::set(L"libDrive", L"ReRunTestOnFailureCount.value", L"2");
        fail("getExclusiveDriveAccess", TestFailedException(L"f"));
        parameters.prompt = true;
        parameters.failOnMedia = c.failOnMedia;
        parameters.checkQualified = c.checkQualified;
        host.queueAnswers(c.answers);
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), c.result);
        std::vector<std::string> boxes;
        for (const auto& box : host.messageBoxes())
            boxes.push_back(box.message.substr(0, box.message.find('{')));
        EXPECT_EQ(joined(boxes), c.boxes);
        EXPECT_EQ(callCount("resetVariableForSecondRun"), 0u);
    }
}

// The eject between a failed run and its rerun shows its progress and, when the drive cannot
// eject, says so with the status and ends the run as a busy device.
TEST_F(DriverTest, AnEjectThatFailsBetweenRunsEndsTheRunAsABusyDevice) {
    kiv::Resource::clear();
    kiv::Resource::set(L"libDrive", L"ReRunTestOnFailureCount.value", L"2");
    fail("getExclusiveDriveAccess", TestFailedException(L"f"));
    fail("ejectDisc", EjectError(0x5302u));
    parameters.prompt = true;
    OpenTest test(drive, parameters, strings);
    EXPECT_EQ(test.Run(), R::DEVICEBUSY);
    EXPECT_EQ(lastCalls(2), "unlockTray ejectDisc");
    const auto ejectFailed = host.eventsWithKey("ERROR_EJECTING_MEDIA");
    ASSERT_EQ(ejectFailed.size(), 1u);
    EXPECT_EQ(ejectFailed[0].get(L"ScsiError").toString().toUtf8(), "5302");
    EXPECT_EQ(callCount("resetVariableForSecondRun"), 0u) << "no rerun without the eject";
    bool ejecting = false;
    for (const auto& progress : host.progressReports())
        ejecting |= progress.key == "EJECTING_MEDIA";
    EXPECT_TRUE(ejecting);
}

Calls operator+(Calls a, const Calls& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST_F(DriverTest, OneRunCallsItsPhasesInOrder) {
    const Calls start = {"getExclusiveDriveAccess", "lockTray", "getDriveGeometry",
                         "getSupportedWriteSpeeds", "setWriteParameters"};
    const Calls pass = {"writeSectors(0)", "writeSectors(1)", "flushCache",
                        "closeTrack(0)",   "readSectors(0)",  "readSectors(1)"};
    const Calls two = Calls{"setSpeed(65535)", "getNextWritableAddress"} + pass +
                      Calls{"setSpeed(1764)", "getNextWritableAddress"} + pass +
                      Calls{"unlockTray"};
    const struct {
        const char* name;
        std::function<void()> setup;
        Calls expected;
        std::string events;
    } cases[] = {
        {"two speeds", [] {}, start + Calls{"getNextWritableAddress", "prepareForWrite"} + two, ""},
        // The run ends quietly with the tray still locked.
        {"disc too full", [&] { drive.capacity = 1; }, start + Calls{"getNextWritableAddress"},
         "MEDIA_FULL_EVENT"},
        {"rewritable disc is not measured", [&] { drive.capacity = 1, drive.mediaIs = {"RWDisc"}; },
         start + Calls{"prepareForWrite"} + two, ""},
        {"no speeds", [&] { drive.speeds = {}; },
         start + Calls{"getNextWritableAddress", "prepareForWrite", "unlockTray"}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        drive.calls.clear();
        host.clear();
        drive.speeds = {0xFFFF, 1764};
        drive.capacity = 2000000;
        drive.mediaIs.clear();
        c.setup();
        parameters.sectors = 2;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), R::PASS);
        EXPECT_EQ(drive.calls, c.expected);
        EXPECT_EQ(eventKeys(), c.events);
    }
}

TEST_F(DriverTest, TotalTimeBorrowsWithoutCarryingTheSeconds) {
    // Moves the clock on to the next moment the local time reads hour:minute:second.
    const auto advanceTo = [&](const uint64_t(&at)[3]) {
        const os::LocalTime now = os::localTime();
        const uint64_t day = 86'400'000, target = (at[0] * 3600 + at[1] * 60 + at[2]) * 1000;
        const uint64_t current =
            (now.hour * 3600ull + now.minute * 60ull + now.second) * 1000 + now.milliseconds;
        clock.advance((target + day - current) % day);
    };
    const struct {
        uint64_t from[3], to[3];
        const char* total;
    } cases[] = {
        {{10, 5, 30}, {11, 5, 0}, "1 hours 4294967295 minutes and 30 seconds"},
        {{23, 0, 0}, {1, 30, 15}, "2 hours 30 minutes and 15 seconds"},
    };
    for (const auto& c : cases) {
        OpenTest test(drive, parameters, strings);
        advanceTo(c.from);
        test.startTimingTest();
        advanceTo(c.to);
        test.endTimingTest();
        EXPECT_EQ(logged(2).back(), std::string("1697 Total Test Time : ") + c.total);
    }
}

}  // namespace
}  // namespace rwtest

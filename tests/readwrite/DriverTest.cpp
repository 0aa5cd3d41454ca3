// The read/write test's driver: the result of every way a run ends, validation, the reruns
// after a failure, the phase order of a run and the timing lines.
#include <functional>

#include "ScriptedOptical.h"
#include "kiv/Exception.h"
#include "kiv/Resource.h"
#include "libDrive/Exceptions.h"

namespace rwtest {
namespace {

using R = quel5::TestResult;
using Calls = std::vector<std::string>;

class DriverTest : public ReadWriteFixture {};

TEST_F(DriverTest, EveryExceptionEndsTheRunWithItsResultActionAndLog) {
    const struct {
        const char* name;
        std::function<void()> raise;
        bool failOnMedia;
        R result;
        int priority;
        std::string line;
        Calls tail;  // the last drive calls
    } cases[] = {
        {"user abort",
         [] { throw UserAborted(L"stop"); },
         false,
         R::USERABORTED,
         3,
         "1349 stop",
         {"lockTray"}},
        {"internal",
         [] { throw InternalException(L"bad"); },
         false,
         R::INTERNALERROR,
         1,
         "1355 ReadWriteTest::Run() caught an InternalException when running runTest()",
         {"lockTray"}},
        {"invalid media",
         [] { throw InvalidMediaException(L"m"); },
         false,
         R::INCORRECTMEDIA,
         4,
         "1360 m",
         {"lockTray", "unlockTray", "ejectDisc"}},
        {"invalid media, media problems fail",
         [] { throw InvalidMediaException(L"m"); },
         true,
         R::FAIL,
         4,
         "1360 m",
         {"lockTray", "unlockTray", "ejectDisc"}},
        {"no media",
         [] { throw NoMediaPresent(L"x"); },
         false,
         R::NOMEDIA,
         4,
         "1366  No media present: x",
         {"lockTray"}},
        {"no media, media problems fail",
         [] { throw NoMediaPresent(L"x"); },
         true,
         R::FAIL,
         4,
         "1366  No media present: x",
         {"lockTray"}},
        {"failed",
         [] { throw TestFailedException(L"f"); },
         false,
         R::FAIL,
         4,
         "1372 f",
         {"lockTray", "unlockTray", "releaseExclusiveAccess"}},
        {"eject", [] { throw EjectError(L"e"); }, false, R::DEVICEBUSY, 4, "1377 e", {"lockTray"}},
        {"cannot run",
         [] { throw CannotRun(L"c"); },
         false,
         R::CANNOTRUN,
         4,
         "1381 c",
         {"lockTray"}},
        {"timed out",
         [] { throw TimedOutException(L"t"); },
         false,
         R::TIMEDOUT,
         4,
         "1385 t",
         {"lockTray"}},
        {"handle",
         [] { throw InvalidHandle(L"h"); },
         false,
         R::NODEVICE,
         4,
         "1389 Invalid Handle : h",
         {"lockTray"}},
        {"anything else",
         [] { throw kiv::InternalError(L"i"); },
         false,
         R::INTERNALERROR,
         1,
         "1393 ReadWriteTest::Run() caught cathc-all Exception when running runTest()",
         {"lockTray"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        drive.calls.clear();
        drive.faults["lockTray"] = c.raise;
        parameters.failOnMedia = c.failOnMedia;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), c.result);
        EXPECT_TRUE(wasLogged(c.priority, c.line));
        ASSERT_GE(drive.calls.size(), c.tail.size());
        EXPECT_EQ(Calls(drive.calls.end() - static_cast<long>(c.tail.size()), drive.calls.end()),
                  c.tail);
    }
}

TEST_F(DriverTest, AStoppedRunTellsOfTheEraseBeforeErasing) {
    host.stopAfterPolls(0);
    drive.mediaIs = {"CDRWDisc"};
    parameters.eraseAfter = parameters.notifyOnAbort = true;
    OpenTest test(drive, parameters, strings);
    EXPECT_EQ(test.Run(), R::USERABORTED);
    ASSERT_EQ(host.messageBoxes().size(), 1u);
    EXPECT_EQ(host.messageBoxes()[0].message, "ERASE_AFTER_CANCEL");
    EXPECT_EQ(drive.calls.back(), "blankDisc(30,60,100)");
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

TEST_F(DriverTest, OneRunCallsItsPhasesInOrder) {
    const Calls start = {"getExclusiveDriveAccess", "lockTray", "getDriveGeometry",
                         "getSupportedWriteSpeeds", "setWriteParameters"};
    const Calls pass = {
        "writeSectors(0)", "writeSectors(1)", "flushCache",
        "closeTrack(0)",   "readSectors(0)",  "readSectors(1)",
    };
    const struct {
        const char* name;
        std::function<void()> setup;
        Calls expected;
        Calls events;
    } cases[] = {
        {"two speeds",
         [] {},
         [&] {
             Calls c = start;
             for (const auto* call : {"getNextWritableAddress", "prepareForWrite",
                                      "setSpeed(65535)", "getNextWritableAddress"})
                 c.push_back(call);
             c.insert(c.end(), pass.begin(), pass.end());
             c.push_back("setSpeed(1764)");
             c.push_back("getNextWritableAddress");
             c.insert(c.end(), pass.begin(), pass.end());
             c.push_back("unlockTray");
             return c;
         }(),
         {}},
        // The run ends quietly with the tray still locked.
        {"disc too full",
         [&] { drive.capacity = 1; },
         [&] {
             Calls c = start;
             c.push_back("getNextWritableAddress");
             return c;
         }(),
         {"MEDIA_FULL_EVENT"}},
        {"no speeds",
         [&] { drive.speeds = {}; },
         [&] {
             Calls c = start;
             for (const auto* call : {"getNextWritableAddress", "prepareForWrite", "unlockTray"})
                 c.push_back(call);
             return c;
         }(),
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        drive.calls.clear();
        host.clear();
        drive.speeds = {0xFFFF, 1764};
        drive.capacity = 2000000;
        c.setup();
        parameters.sectors = 2;
        OpenTest test(drive, parameters, strings);
        EXPECT_EQ(test.Run(), R::PASS);
        EXPECT_EQ(drive.calls, c.expected);
        EXPECT_EQ(host.eventKeys(), c.events);
    }
}

TEST_F(DriverTest, TotalTimeBorrowsWithoutCarryingTheSeconds) {
    // Moves the clock on to the next moment the local time reads hour:minute:second.
    const auto advanceTo = [&](uint64_t hour, uint64_t minute, uint64_t second) {
        const os::LocalTime at = os::localTime();
        const uint64_t day = 86'400'000;
        const uint64_t current =
            (at.hour * 3600ull + at.minute * 60ull + at.second) * 1000 + at.milliseconds;
        clock.advance(((hour * 3600 + minute * 60 + second) * 1000 + day - current) % day);
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
        advanceTo(c.from[0], c.from[1], c.from[2]);
        test.startTimingTest();
        advanceTo(c.to[0], c.to[1], c.to[2]);
        test.endTimingTest();
        EXPECT_EQ(logged(2).back(), std::string("1697 Total Test Time : ") + c.total);
    }
}

}  // namespace
}  // namespace rwtest

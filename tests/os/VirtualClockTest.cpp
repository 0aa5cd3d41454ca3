#include "os/VirtualClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

#include "os/Clock.h"
#include "os/Thread.h"
#include "os/Waitable.h"
#include "support/ScopedVirtualClock.h"

namespace {

constexpr uint64_t kStart = 1700000000123ULL;  // 2023-11-14 22:13:20.123 UTC

class VirtualClockTest : public ::testing::Test {
protected:
    testsupport::ScopedVirtualClock clock_{kStart};
};

TEST_F(VirtualClockTest, SleepsOfOneThreadAddUpAtOnce) {
    struct Case {
        std::vector<uint32_t> sleeps;
        uint64_t elapsed;
    };
    const Case cases[] = {
        {{}, 0},
        {{0}, 0},
        {{1}, 1},
        {{1000, 1000, 1000}, 3000},
        {{0xFFFFFFFFu}, 0xFFFFFFFFULL},
        {{0xFFFFFFFFu, 2}, 0x100000001ULL},
    };
    for (const Case& c : cases) {
        testsupport::ScopedVirtualClock clock(kStart);
        for (uint32_t ms : c.sleeps) {
            os::sleepMilliseconds(ms);
        }
        EXPECT_EQ(clock.elapsedMilliseconds(), c.elapsed) << c.sleeps.size() << " sleeps";
        EXPECT_EQ(os::nowMilliseconds(), kStart + c.elapsed);
    }
}

TEST_F(VirtualClockTest, TimeOfDaySplitsSecondsAndMilliseconds) {
    struct Case {
        uint64_t advance;
        uint64_t seconds;
        uint32_t milliseconds;
    };
    const Case cases[] = {
        {0, 1700000000, 123},
        {876, 1700000000, 999},
        {1, 1700000001, 0},  // cumulative: 877 after the start
        {60000, 1700000061, 0},
    };
    for (const Case& c : cases) {
        clock_.advance(c.advance);
        const os::TimeOfDay t = os::timeOfDay();
        EXPECT_EQ(t.seconds, c.seconds) << "after +" << c.advance;
        EXPECT_EQ(t.milliseconds, c.milliseconds) << "after +" << c.advance;
    }
}

TEST_F(VirtualClockTest, TickCountWrapsAtTwoToThe32) {
    struct Case {
        uint64_t startTick;
        uint64_t advance;
        uint32_t tick;
    };
    const Case cases[] = {
        {0, 0, 0},
        {0xFFFFFF9CULL, 99, 0xFFFFFFFFu},
        {0xFFFFFF9CULL, 100, 0},
        {0xFFFFFF00ULL, 0x200, 0x100},
        {0x1FFFFFFFFULL, 1, 0},
    };
    for (const Case& c : cases) {
        testsupport::ScopedVirtualClock clock(kStart, c.startTick);
        clock.advance(c.advance);
        EXPECT_EQ(os::tickCount(), c.tick) << std::hex << c.startTick << " + " << c.advance;
        // Wrapping arithmetic on ticks still measures the time that passed.
        EXPECT_EQ(static_cast<uint32_t>(os::tickCount() - static_cast<uint32_t>(c.startTick)),
                  static_cast<uint32_t>(c.advance));
    }
}

TEST_F(VirtualClockTest, WaitAloneEndsAtItsDeadlineOrAtOnceWhenSignalled) {
    struct Case {
        bool signalled;
        uint32_t timeout;
        bool result;
        uint64_t elapsed;
    };
    const Case cases[] = {
        {true, 500, true, 0},
        {true, os::kInfinite, true, 0},
        {false, 500, false, 500},
        {false, 0, false, 0},
        // Nobody could ever set the event: the wait gives up instead of hanging.
        {false, os::kInfinite, false, 0},
    };
    for (const Case& c : cases) {
        const uint64_t before = clock_.elapsedMilliseconds();
        os::Event event(c.signalled);
        EXPECT_EQ(os::waitFor(event, c.timeout), c.result) << c.signalled << "/" << c.timeout;
        EXPECT_EQ(clock_.elapsedMilliseconds() - before, c.elapsed)
            << c.signalled << "/" << c.timeout;
    }
}

// The shape of a format command: a worker polls the drive once a second while the caller waits
// for the worker in one-second slices and reports progress at every timeout.
TEST_F(VirtualClockTest, PollingWorkerAndSlicedWaiterMeetAtExactTimes) {
    struct Case {
        int polls;
        uint64_t chargePerPoll;  // time a simulated drive charges for each poll
        uint64_t finish;
    };
    const Case cases[] = {
        {1, 0, 1000}, {2, 0, 2000}, {5, 0, 5000}, {181, 0, 181000}, {3, 300, 3900}, {4, 250, 5000},
    };
    for (const Case& c : cases) {
        for (int run = 0; run < 10; ++run) {  // the same answer every time
            testsupport::ScopedVirtualClock clock(kStart);
            std::vector<uint64_t> pollTimes;
            os::Thread worker([&] {
                for (int i = 0; i < c.polls; ++i) {
                    os::sleepMilliseconds(1000);
                    clock.advance(c.chargePerPoll);
                    pollTimes.push_back(clock.elapsedMilliseconds());
                }
            });
            std::vector<uint64_t> timeouts;
            while (!os::waitFor(worker, 1000)) {
                timeouts.push_back(clock.elapsedMilliseconds());
            }
            const uint64_t finishedAt = clock.elapsedMilliseconds();
            worker.join();

            ASSERT_EQ(finishedAt, c.finish) << c.polls << " polls, run " << run;
            ASSERT_EQ(pollTimes.size(), static_cast<size_t>(c.polls));
            EXPECT_EQ(pollTimes.back(), c.finish);
            // A timeout at every whole second before the worker ended, none at its end.
            ASSERT_EQ(timeouts.size(), (c.finish + 999) / 1000 - 1) << c.polls << " polls";
            for (size_t i = 0; i < timeouts.size(); ++i) {
                EXPECT_EQ(timeouts[i], (i + 1) * 1000);
            }
        }
    }
}

TEST_F(VirtualClockTest, EventSetByWorkerEndsWaitsAtTheWorkersTime) {
    struct Case {
        uint32_t timeout;
        bool result;
        uint64_t elapsed;
    };
    const Case cases[] = {
        {os::kInfinite, true, 2500},
        {2500, true, 2500},  // set at the deadline itself: the worker woke first
        {2499, false, 2499},
        {10000, true, 2500},
    };
    for (const Case& c : cases) {
        testsupport::ScopedVirtualClock clock(kStart);
        os::Event ready;
        os::Thread worker([&] {
            os::sleepMilliseconds(2500);
            ready.set();
        });
        EXPECT_EQ(os::waitFor(ready, c.timeout), c.result) << c.timeout;
        EXPECT_EQ(clock.elapsedMilliseconds(), c.elapsed) << c.timeout;
        worker.join();
        EXPECT_EQ(clock.elapsedMilliseconds(), 2500u);
    }
}

TEST_F(VirtualClockTest, TimeStandsStillWhileAWorkerIsBusyOutsideTheClock) {
    os::Event release;
    uint64_t seenByWorker = 1;
    os::Thread worker([&] {
        // Blocked outside the clock (as in a device call): still running for virtual time.
        release.waitReal(os::kInfinite);
        seenByWorker = clock_.elapsedMilliseconds();
    });
    // Something outside the program (not a participant) lets the worker go on.
    std::thread outside([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        release.set();
    });
    os::sleepMilliseconds(5000);
    worker.join();
    outside.join();
    EXPECT_EQ(seenByWorker, 0u);
    EXPECT_EQ(clock_.elapsedMilliseconds(), 5000u);
}

TEST_F(VirtualClockTest, ThreadsWaitingForEachOtherForeverGiveUp) {
    os::Event neverSet;
    bool workerResult = true;
    os::Thread worker([&] { workerResult = os::waitFor(neverSet, os::kInfinite); });
    EXPECT_FALSE(os::waitFor(neverSet, os::kInfinite));
    worker.join();
    EXPECT_FALSE(workerResult);
    EXPECT_EQ(clock_.elapsedMilliseconds(), 0u);
}

TEST_F(VirtualClockTest, FinishedWorkersNoLongerHoldTimeBack) {
    for (int i = 0; i < 3; ++i) {
        os::Thread worker([] { os::sleepMilliseconds(100); });
        worker.join();
    }
    // With every worker gone, the test thread alone moves time again.
    os::sleepMilliseconds(50);
    EXPECT_EQ(clock_.elapsedMilliseconds(), 350u);
}

TEST(ClockInstallation, NullRestoresTheRealClock) {
    os::VirtualClock virtualClock(kStart);
    os::installClock(&virtualClock);
    EXPECT_EQ(&os::clock(), &virtualClock);
    os::installClock(nullptr);
    EXPECT_NE(&os::clock(), &virtualClock);
    // The real clock reads the system's time: well after the virtual start instant.
    EXPECT_GT(os::nowMilliseconds(), kStart);
}

}  // namespace

#include "os/Thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "os/Clock.h"
#include "os/Waitable.h"
#include "support/ScopedVirtualClock.h"

namespace {

// These run on the real clock: the waits end through the operating system's own objects.
TEST(Thread, RunsItsBodyOnceAndIsSignalledAfterIt) {
    struct Case {
        int increments;
    };
    for (const Case& c : {Case{0}, Case{1}, Case{1000}}) {
        std::atomic<int> counter{0};
        os::Thread worker([&] {
            for (int i = 0; i < c.increments; ++i) {
                ++counter;
            }
        });
        EXPECT_TRUE(os::waitFor(worker, os::kInfinite));
        EXPECT_TRUE(worker.isSignalled());
        EXPECT_EQ(counter.load(), c.increments);
        worker.join();
        worker.join();  // a second join does nothing
    }
}

TEST(Thread, IsNotSignalledWhileItsBodyRuns) {
    os::Event release;
    os::Thread worker([&] { release.waitReal(os::kInfinite); });
    EXPECT_FALSE(os::waitFor(worker, 0));
    EXPECT_FALSE(worker.isSignalled());
    release.set();
    EXPECT_TRUE(os::waitFor(worker, os::kInfinite));
}

TEST(Thread, JoinRethrowsWhatEscapedTheBodyOnce) {
    os::Thread worker([] { throw std::runtime_error("drive vanished"); });
    try {
        worker.join();
        ADD_FAILURE() << "join() did not rethrow";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "drive vanished");
    }
    EXPECT_NO_THROW(worker.join());
}

TEST(Thread, FailingBodyStillLeavesTheVirtualClock) {
    testsupport::ScopedVirtualClock clock(0);
    {
        os::Thread worker([] { throw std::logic_error("bad"); });
        EXPECT_THROW(worker.join(), std::logic_error);
    }
    {
        os::Thread dropped([] { throw std::logic_error("ignored"); });
    }                           // the destructor joins and swallows
    os::sleepMilliseconds(10);  // would never return if a worker were still counted
    EXPECT_EQ(clock.elapsedMilliseconds(), 10u);
}

TEST(Event, SetResetAndWaitWithoutAClockInstalled) {
    struct Case {
        bool initial;
        bool setIt;
        bool resetIt;
        bool signalled;
    };
    const Case cases[] = {
        {false, false, false, false}, {true, false, false, true}, {false, true, false, true},
        {false, true, true, false},   {true, false, true, false},
    };
    for (const Case& c : cases) {
        os::Event event(c.initial);
        if (c.setIt) {
            event.set();
        }
        if (c.resetIt) {
            event.reset();
        }
        EXPECT_EQ(event.isSignalled(), c.signalled);
        EXPECT_EQ(os::waitFor(event, 0), c.signalled);
    }
}

}  // namespace

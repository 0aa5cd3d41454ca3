#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "kiv/Exception.h"
#include "kiv/Log.h"
#include "support/ScopedVirtualClock.h"
#include "support/TempFile.h"

namespace {

using kiv::LogFactory;
using kiv::String;

// Installs a memory sink and a known threshold for one test and takes both away after it.
class LogTest : public ::testing::Test {
protected:
    void SetUp() override {
        LogFactory::removeAllSinks();
        auto sink = std::make_unique<kiv::MemorySink>();
        memory_ = *sink;  // copies share the records
        LogFactory::addSink(std::move(sink));
    }
    void TearDown() override {
        LogFactory::removeAllSinks();
        LogFactory::setPriority(4);
    }

    std::vector<std::wstring> messages() const {
        std::vector<std::wstring> out;
        for (const auto& record : memory_.records()) out.push_back(record.message.str());
        return out;
    }

    kiv::MemorySink memory_;
};

TEST_F(LogTest, DefaultThresholdIsFourAndSettingItIsClamped) {
    EXPECT_EQ(LogFactory::getPriority(), 4);
    const struct {
        int requested;
        int expected;
    } cases[] = {{1, 1}, {5, 5}, {3, 3}, {0, 1}, {-7, 1}, {6, 5}, {100, 5}};
    for (const auto& c : cases) {
        LogFactory::setPriority(c.requested);
        EXPECT_EQ(LogFactory::getPriority(), c.expected) << c.requested;
    }
}

TEST_F(LogTest, MessagesAtOrAboveTheThresholdReachTheSinks) {
    kiv::Logger* logger = LogFactory::createLogger(L"libDrive.Test", nullptr);
    for (int threshold = 1; threshold <= 5; ++threshold) {
        LogFactory::setPriority(threshold);
        memory_.clear();
        for (int priority = 1; priority <= 5; ++priority) {
            logger->log(priority, String::fromNumber(static_cast<uint64_t>(priority)));
            EXPECT_EQ(logger->isEnabled(priority), priority >= threshold);
        }
        const auto records = memory_.records();
        ASSERT_EQ(records.size(), static_cast<std::size_t>(6 - threshold)) << threshold;
        EXPECT_EQ(records.front().priority, threshold);
        EXPECT_EQ(records.back().priority, 5);
    }
}

TEST_F(LogTest, LoggersAreOnePerNameAndStoredInTheSlot) {
    kiv::Logger* slot = nullptr;
    kiv::Logger* first = LogFactory::createLogger(L"libDrive.Range", &slot);
    EXPECT_EQ(slot, first);
    EXPECT_EQ(LogFactory::createLogger(L"libDrive.Range", nullptr), first);
    EXPECT_NE(LogFactory::createLogger(L"libDrive.Drive", nullptr), first);
    EXPECT_EQ(first->getName().str(), L"libDrive.Range");
}

TEST_F(LogTest, RecordsCarryLoggerPriorityMessageAndVirtualTime) {
    {
        testsupport::ScopedVirtualClock clock(1700000000123);
        kiv::Logger* logger = LogFactory::createLogger(L"libDrive.ReadWriteTest", nullptr);
        logger->log(5, L"1567 ReadWriteTest::runTest() DONE!!");
        clock.advance(2500);
        logger->log(4, L"second");
    }

    const auto records = memory_.records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].logger.str(), L"libDrive.ReadWriteTest");
    EXPECT_EQ(records[0].priority, 5);
    EXPECT_EQ(records[0].message.str(), L"1567 ReadWriteTest::runTest() DONE!!");
    EXPECT_EQ(records[0].timeMilliseconds, 1700000000123u);
    EXPECT_EQ(records[1].timeMilliseconds, 1700000002623u);
}

TEST_F(LogTest, TraceLoggerWritesEntryAndExitOnlyWhenDetailIsOn) {
    kiv::Logger* logger = LogFactory::createLogger(L"libDrive.Drive", nullptr);
    LogFactory::setPriority(1);
    {
        kiv::TraceLogger trace(logger, L"Drive::Initialize", L"libDrive/Drive", 120);
        logger->log(1, L"121 inside");
    }
    EXPECT_EQ(messages(), (std::vector<std::wstring>{
                              L"120 Entering Drive::Initialize (libDrive/Drive)",
                              L"121 inside",
                              L"120 Leaving Drive::Initialize",
                          }));
    memory_.clear();
    LogFactory::setPriority(2);
    { kiv::TraceLogger trace(logger, L"Drive::Initialize", L"libDrive/Drive", 120); }
    EXPECT_TRUE(memory_.records().empty());
}

TEST_F(LogTest, TraceLoggerLeavesWhenAnExceptionPassesThrough) {
    kiv::Logger* logger = LogFactory::createLogger(L"libDrive.Drive", nullptr);
    LogFactory::setPriority(1);
    try {
        kiv::TraceLogger trace(logger, L"Drive::Run", L"libDrive/Drive", 7);
        throw kiv::InternalError(L"boom");
    } catch (const kiv::Exception&) {
    }
    ASSERT_EQ(messages().size(), 2u);
    EXPECT_EQ(messages()[1], L"7 Leaving Drive::Run");
}

TEST_F(LogTest, AssertionFailureGoesToTheDefectLoggerAtNotice) {
    LogFactory::setPriority(5);
    kiv::AssertionFailure::logAssert(L"libDrive/RandomSeekTest", 212, L"elapsed >= 0");
    const auto records = memory_.records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].logger.str(), L"DEFECT.GENERIC");
    EXPECT_EQ(records[0].priority, 5);
    EXPECT_EQ(records[0].message.str(),
              L"212 Assertion failed: elapsed >= 0 (libDrive/RandomSeekTest)");
    EXPECT_EQ(kiv::AssertionFailure::defectLogger(),
              LogFactory::createLogger(L"DEFECT.GENERIC", nullptr));
}

TEST_F(LogTest, FileSinkAppendsOneLinePerRecord) {
    const testsupport::TempFile file("log", "earlier\n");
    const testsupport::ScopedVirtualClock clock(86400000ull * 365 +
                                                3723004);  // 1971-01-01 01:02:03.004 UTC
    LogFactory::addSink(std::make_unique<kiv::FileSink>(kiv::String(file.widePath())));
    kiv::Logger* logger = LogFactory::createLogger(L"libDrive.Range", nullptr);
    logger->log(4, L"193  EndRange is less than the start range");
    logger->log(4, L"1154 Disc ID has an invalid regex pattern\n");
    LogFactory::removeAllSinks();  // closes the file
    EXPECT_EQ(
        file.contents(),
        "earlier\n"
        "1971-01-01 01:02:03.004 P4 libDrive.Range: 193  EndRange is less than the start range\n"
        "1971-01-01 01:02:03.004 P4 libDrive.Range: 1154 Disc ID has an invalid regex pattern\n");
}

TEST_F(LogTest, FileSinkOnAnUnwritablePathThrows) {
    EXPECT_THROW(kiv::FileSink(L"/no/such/directory/x.log"), kiv::Exception);
}

TEST_F(LogTest, WorkerThreadsMayLogConcurrently) {
    kiv::Logger* logger =
        LogFactory::createLogger(L"libDrive.Windows.WindowsOpticalDrive", nullptr);
    const auto work = [logger] {
        for (int i = 0; i < 200; ++i) logger->log(4, L"line");
    };
    std::thread a(work), b(work);
    a.join();
    b.join();
    EXPECT_EQ(memory_.records().size(), 400u);
}

}  // namespace

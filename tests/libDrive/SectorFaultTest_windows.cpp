// A sector span whose end does not lie above its start raises structured exception 7 after
// logging the assertion. A vectored handler catches it and lets the constructor go on.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>

#include "kiv/Log.h"
#include "libDrive/Sector.h"

namespace {

LONG faultsSeen = 0;

LONG CALLBACK countSectorFault(EXCEPTION_POINTERS* info) {
    if (info->ExceptionRecord->ExceptionCode != 7) return EXCEPTION_CONTINUE_SEARCH;
    ++faultsSeen;
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(SectorFault, BrokenSpansRaiseStructuredExceptionSeven) {
    kiv::MemorySink sink;
    kiv::LogFactory::addSink(std::make_unique<kiv::MemorySink>(sink));
    void* handler = AddVectoredExceptionHandler(1, countSectorFault);
    ASSERT_NE(handler, nullptr);
    const struct {
        uint64_t start;
        uint64_t end;
    } spans[] = {{5, 5}, {6, 5}, {0, 0}};
    for (const auto& span : spans) {
        SCOPED_TRACE(testing::Message() << span.start << ".." << span.end);
        sink.clear();
        faultsSeen = 0;
        const kivrlibdrive::CSector sector(span.start, span.end);
        EXPECT_EQ(faultsSeen, 1);
        const auto records = sink.records();
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].message.toUtf8(),
                  "20 Assertion failed: m_qwEndSector > m_qwStartSector (libDrive/Sector)");
    }
    RemoveVectoredExceptionHandler(handler);
    kiv::LogFactory::removeAllSinks();
}

}  // namespace

// A sector span whose end does not lie above its start, where there are no structured
// exceptions: the assertion is logged and a kiv::InternalError thrown.
#include <gtest/gtest.h>

#include <memory>

#include "kiv/Exception.h"
#include "kiv/Log.h"
#include "libDrive/Sector.h"

namespace {

TEST(SectorFault, BrokenSpansAreLoggedAndThrown) {
    kiv::MemorySink sink;
    kiv::LogFactory::addSink(std::make_unique<kiv::MemorySink>(sink));
    const struct {
        uint64_t start;
        uint64_t end;
    } spans[] = {{5, 5}, {6, 5}, {0, 0}};
    for (const auto& span : spans) {
        SCOPED_TRACE(testing::Message() << span.start << ".." << span.end);
        sink.clear();
        EXPECT_THROW(kivrlibdrive::CSector(span.start, span.end), kiv::InternalError);
        const auto records = sink.records();
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].message.toUtf8(),
                  "20 Assertion failed: m_qwEndSector > m_qwStartSector (libDrive/Sector)");
    }
    kiv::LogFactory::removeAllSinks();
}

}  // namespace

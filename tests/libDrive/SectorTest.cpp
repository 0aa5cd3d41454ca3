// CSector: a half-open span of sectors.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "libDrive/Sector.h"

namespace {

using kivrlibdrive::CSector;

TEST(Sector, SpansAreHalfOpen) {
    constexpr uint64_t kLast = std::numeric_limits<uint64_t>::max();
    const struct {
        uint64_t start;
        uint64_t end;
        uint64_t total;
    } spans[] = {{0, 1, 1}, {10, 20, 10}, {0, kLast, kLast}, {kLast - 1, kLast, 1}};
    for (const auto& span : spans) {
        SCOPED_TRACE(testing::Message() << span.start << ".." << span.end);
        const CSector sector(span.start, span.end);
        EXPECT_EQ(sector.GetTotalSectors(), span.total);
        EXPECT_TRUE(sector.IsValid(span.start));
        EXPECT_TRUE(sector.IsValid(span.end - 1));
        EXPECT_FALSE(sector.IsValid(span.end));
        if (span.start > 0) {
            EXPECT_FALSE(sector.IsValid(span.start - 1));
        }
    }
}

}  // namespace

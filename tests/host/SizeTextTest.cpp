#include <gtest/gtest.h>

#include "cli/SizeText.h"

namespace {

TEST(SizeTextTest, EachSizeInTheUnitThatReadsRight) {
    const struct {
        uint64_t bytes;
        const char* shown;
    } cases[] = {
        {0, "0 B"},
        {512, "512 B"},
        {1023, "1023 B"},
        {1024, "1.0 KiB"},
        {1024 * 1024 - 1, "1.0 MiB"},  // 1023.999 KiB would read as 1024.0 KiB
        {1024 * 1024, "1.0 MiB"},
        {3 * 1024 * 1024 / 2, "1.5 MiB"},
        {128ull << 20, "128.0 MiB"},
        {(1ull << 30) + (1ull << 29), "1.5 GiB"},
        {500107862016ull, "465.8 GiB"},
        {4ull << 40, "4.0 TiB"},
        {UINT64_MAX, "16384.0 PiB"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(host::binarySizeText(c.bytes), c.shown) << c.bytes;
    }
}

}  // namespace

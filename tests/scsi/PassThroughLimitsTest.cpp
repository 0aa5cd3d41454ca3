// The pass-through's timeout in seconds and the adapter's limits from recorded
// STORAGE_ADAPTER_DESCRIPTOR answers.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "PassThroughLimits.h"

namespace {

using kivscsi::detail::AdapterLimits;
using kivscsi::detail::adapterLimitsFromDescriptor;
using kivscsi::detail::passThroughTimeoutSeconds;

TEST(PassThroughLimits, TimeoutSecondsRoundUpWithoutWrapping) {
    struct Case {
        uint32_t ms;
        uint32_t seconds;
    };
    const Case cases[] = {
        {0, 1},
        {1, 1},
        {999, 1},
        {1000, 1},
        {1001, 2},
        {4'294'966'296, 4'294'967},
        {4'294'966'297, 4'294'967},
        {4'294'967'295, 4'294'968},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(passThroughTimeoutSeconds(c.ms), c.seconds) << c.ms << " ms";
    }
}

// A STORAGE_ADAPTER_DESCRIPTOR as winioctl.h lays it out (32 bytes with its tail).
std::vector<unsigned char> descriptor(uint32_t maxTransfer, uint32_t pages, uint32_t mask) {
    std::vector<unsigned char> bytes(32, 0);
    auto put = [&bytes](size_t offset, uint32_t value) {
        for (size_t i = 0; i < 4; ++i)
            bytes[offset + i] = static_cast<unsigned char>(value >> (8 * i));
    };
    put(0, 32);
    put(4, 32);
    put(8, maxTransfer);
    put(12, pages);
    put(16, mask);
    return bytes;
}

TEST(PassThroughLimits, AdapterDescriptorGivesAlignmentAndLargestTransfer) {
    struct Case {
        const char* name;
        std::vector<unsigned char> answer;
        size_t returned;
        std::optional<AdapterLimits> expected;
    };
    const Case cases[] = {
        {"byte aligned, 128 KiB, plenty of pages", descriptor(128 * 1024, 257, 0), 32,
         AdapterLimits{16, 128 * 1024}},
        {"4 KiB alignment", descriptor(1 << 20, 4096, 4095), 32, AdapterLimits{4096, 1 << 20}},
        {"pages bound the transfer", descriptor(1 << 20, 17, 3), 32, AdapterLimits{16, 16 * 4096}},
        {"one page", descriptor(1 << 20, 1, 3), 32, AdapterLimits{16, 4096}},
        {"no transfer length reported", descriptor(0, 0, 1), 32, AdapterLimits{16, 64 * 1024}},
        {"the largest DWORD length", descriptor(0xFFFF'FFFF, 0, 7), 32,
         AdapterLimits{16, 0xFFFF'FFFF}},
        {"mask not below a power of two", descriptor(1 << 20, 0, 5), 32, std::nullopt},
        {"answer stops before the mask", descriptor(1 << 20, 0, 3), 19, std::nullopt},
        {"just holds the mask", descriptor(1 << 20, 0, 511), 20, AdapterLimits{512, 1 << 20}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::optional<AdapterLimits> limits =
            adapterLimitsFromDescriptor(c.answer.data(), c.returned);
        ASSERT_EQ(limits.has_value(), c.expected.has_value());
        if (limits) {
            EXPECT_EQ(limits->alignment, c.expected->alignment);
            EXPECT_EQ(limits->maxTransferBytes, c.expected->maxTransferBytes);
        }
    }
}

}  // namespace

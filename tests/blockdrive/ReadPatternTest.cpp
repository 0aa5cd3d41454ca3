// Which request sequences count as a stream, and where the stream is expected to go next.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "drives/ReadPattern.h"

namespace {

struct Request {
    uint64_t offset;
    size_t bytes;
    uint64_t stride;  // expected after it; 0: not streaming
};

TEST(ReadPattern, StreamsOnlyWhenRequestsWalkUpwardRegularly) {
    struct Case {
        const char* name;
        std::vector<Request> requests;
    };
    const Case cases[] = {
        {"contiguous from the second request",
         {{0, 100, 0}, {100, 100, 100}, {200, 100, 100}, {300, 100, 100}}},
        {"contiguous takes the new request's size", {{0, 100, 0}, {100, 40, 40}, {140, 40, 40}}},
        {"a gap needs a third request at the same distance",
         {{0, 100, 0}, {300, 100, 0}, {600, 100, 300}, {900, 100, 300}}},
        {"overlapping requests a constant distance apart",
         {{0, 100, 0}, {50, 100, 0}, {100, 100, 50}}},
        {"the distance changes", {{0, 10, 0}, {30, 10, 0}, {60, 10, 30}, {100, 10, 0}}},
        {"resumes after two equal distances again",
         {{0, 10, 0}, {30, 10, 0}, {60, 10, 30}, {100, 10, 0}, {140, 10, 40}}},
        {"the same request again", {{0, 10, 0}, {10, 10, 10}, {10, 10, 0}, {10, 10, 0}}},
        {"backwards", {{300, 100, 0}, {200, 100, 0}, {100, 100, 0}, {0, 100, 0}}},
        {"a step back breaks a stream", {{0, 10, 0}, {10, 10, 10}, {20, 10, 10}, {5, 10, 0}}},
        {"random", {{7000, 8, 0}, {120, 8, 0}, {99000, 8, 0}, {4, 8, 0}, {6000, 8, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        host::ReadPattern pattern;
        for (size_t i = 0; i < c.requests.size(); ++i) {
            const Request& r = c.requests[i];
            pattern.observe(r.offset, r.bytes);
            EXPECT_EQ(pattern.stride(), r.stride) << "after request " << i;
            EXPECT_EQ(pattern.streaming(), r.stride != 0) << "after request " << i;
            EXPECT_EQ(pattern.lastOffset(), r.offset);
            EXPECT_EQ(pattern.predictedBytes(), r.bytes);
        }
    }
}

TEST(ReadPattern, ResetForgetsEveryRequest) {
    struct Case {
        const char* name;
        std::vector<std::pair<uint64_t, size_t>> afterReset;
        bool streaming;
    };
    const Case cases[] = {
        // Each of the first two would continue the earlier requests without the reset.
        {"right after the last request", {{500, 100}}, false},
        {"the earlier stride on", {{600, 100}}, false},
        {"a new stream starts afresh", {{300, 100}, {400, 100}}, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        host::ReadPattern pattern;
        pattern.observe(0, 100);
        pattern.observe(200, 100);
        pattern.observe(400, 100);
        pattern.reset();
        EXPECT_FALSE(pattern.streaming());
        for (const auto& [offset, bytes] : c.afterReset) {
            pattern.observe(offset, bytes);
        }
        EXPECT_EQ(pattern.streaming(), c.streaming);
    }
}

}  // namespace

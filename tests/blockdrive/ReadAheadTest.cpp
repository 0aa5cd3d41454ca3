// Read-ahead over an in-memory device: every request answers as a direct read would, errors
// included and in order; only streams are read ahead, never past the end; writes and requests
// off the stream drop what was read ahead; nothing in flight outlives drain().
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "blockdrive/FakeDevice.h"
#include "drives/ReadAhead.h"
#include "os/Clock.h"

namespace {

using blockdrivetest::FakeDevice;
using host::ReadAhead;

constexpr size_t kBlock = 4096;
constexpr size_t kAlignment = 4096;
constexpr uint32_t kBadSector = 5;  // EIO's number; any nonzero code will do

struct Answer {
    bool served = false;
    uint64_t readMs = 0;
    os::IoResult result;
    std::vector<uint8_t> data;
};

// One request as the drive makes it: from read-ahead when it can, from the device otherwise.
Answer request(ReadAhead& ahead, FakeDevice& device, uint64_t offset, size_t bytes) {
    Answer answer;
    answer.data.assign(bytes, 0xEE);
    answer.served = ahead.serve(offset, bytes, answer.data.data(), &answer.result, &answer.readMs);
    if (!answer.served) {
        answer.result = device.read(offset, answer.data.data(), bytes);
    }
    answer.data.resize(answer.result.error.ok() ? answer.result.bytes : 0);
    return answer;
}

void expectAnswerOfDevice(const Answer& answer, const FakeDevice& device, uint64_t offset,
                          size_t bytes) {
    std::vector<uint8_t> data;
    const os::IoResult truth = device.expected(offset, bytes, &data);
    EXPECT_EQ(answer.result.error.code, truth.error.code) << "at " << offset;
    EXPECT_EQ(answer.result.bytes, truth.bytes) << "at " << offset;
    EXPECT_TRUE(answer.data == data) << "data at " << offset;
}

std::unique_ptr<ReadAhead> readAheadOver(FakeDevice& device, uint64_t limit, unsigned depth,
                                         size_t maxBlockBytes = 16 * kBlock) {
    return std::make_unique<ReadAhead>(device.reader(), limit, kAlignment, depth, maxBlockBytes);
}

TEST(ReadAhead, SweepsAnswerEveryRequestAsTheDeviceWould) {
    struct Case {
        const char* name;
        uint64_t limit;       // the device's size as the drive knows it
        uint64_t deviceSize;  // what the device really holds now
        size_t bytes;
        uint64_t stride;
        std::vector<uint64_t> failing;  // byte offsets
        unsigned depth;
        size_t unserved;  // requests read directly: those before the stream shows
    };
    const uint64_t size = 64 * kBlock;
    const std::vector<uint64_t> scattered = {2 * kBlock + 100, 7 * kBlock, 8 * kBlock + 4095,
                                             63 * kBlock};
    const std::vector<uint64_t> alongStride = {4 * kBlock, 5 * kBlock, 6 * kBlock, 62 * kBlock + 7};
    const Case cases[] = {
        {"contiguous to the end", size, size, kBlock, kBlock, {}, 8, 2},
        {"a stride of three blocks", size, size, kBlock, 3 * kBlock, {}, 4, 3},
        {"overlapping requests", size, size, 2 * kBlock, kBlock, {}, 3, 3},
        {"the last request cut at the end", size - 512, size - 512, kBlock, kBlock, {}, 8, 2},
        {"depth of one", size, size, kBlock, kBlock, {}, 1, 2},
        {"failing blocks", size, size, kBlock, kBlock, scattered, 8, 2},
        {"failing blocks at a stride", size, size, kBlock, 2 * kBlock, alongStride, 5, 3},
        {"the device shrank under the drive", size, 40 * kBlock + 512, kBlock, kBlock, {}, 8, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FakeDevice device(c.deviceSize);
        for (uint64_t offset : c.failing) {
            device.failAt(offset, kBadSector);
        }
        auto ahead = readAheadOver(device, c.limit, c.depth);
        size_t requests = 0;
        std::set<uint64_t> failed;
        for (uint64_t offset = 0; offset < c.limit; offset += c.stride, ++requests) {
            const size_t bytes = static_cast<size_t>(std::min<uint64_t>(c.bytes, c.limit - offset));
            const Answer answer = request(*ahead, device, offset, bytes);
            expectAnswerOfDevice(answer, device, offset, bytes);
            if (!answer.result.error.ok()) {
                failed.insert(offset);
            }
        }
        const host::ReadAheadCounters counters = ahead->counters();
        // A sweep to the end uses everything it read ahead.
        EXPECT_EQ(counters.served, requests - c.unserved);
        EXPECT_EQ(counters.discarded, 0u);
        EXPECT_EQ(device.directReads(), c.unserved);
        EXPECT_LE(device.highestEnd(), c.limit);
        std::set<uint64_t> expectedFailures;
        for (uint64_t offset : c.failing) {
            for (uint64_t at = 0; at < c.limit; at += c.stride) {
                if (at <= offset && offset < at + c.bytes) expectedFailures.insert(at);
            }
        }
        EXPECT_EQ(failed, expectedFailures);
    }
}

TEST(ReadAhead, RequestsOffAnyStreamReadNothingAhead) {
    struct Case {
        const char* name;
        std::vector<uint64_t> blocks;  // request offsets in blocks, each one block long
    };
    const Case cases[] = {
        {"random", {37, 2, 50, 11, 19, 60, 3, 41, 8, 29}},
        {"the same block over and over", {5, 5, 5, 5, 5, 5}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FakeDevice device(64 * kBlock);
        auto ahead = readAheadOver(device, 64 * kBlock, 8);
        for (uint64_t block : c.blocks) {
            const Answer answer = request(*ahead, device, block * kBlock, kBlock);
            EXPECT_FALSE(answer.served) << "block " << block;
            expectAnswerOfDevice(answer, device, block * kBlock, kBlock);
        }
        ahead->drain();
        EXPECT_EQ(ahead->counters().started, 0u);
        EXPECT_EQ(device.workerReads(), 0u);
        EXPECT_EQ(device.directReads(), c.blocks.size());
    }
}

TEST(ReadAhead, RequestsLargerThanABlockBufferAreNotReadAhead) {
    struct Case {
        size_t bytes;
        bool readAhead;
    };
    const Case cases[] = {{2 * kBlock, true}, {2 * kBlock + 512, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        FakeDevice device(256 * kBlock);
        auto ahead = readAheadOver(device, 256 * kBlock, 4, 2 * kBlock);
        for (uint64_t offset = 0; offset < 20 * c.bytes; offset += c.bytes) {
            expectAnswerOfDevice(request(*ahead, device, offset, c.bytes), device, offset, c.bytes);
        }
        ahead->drain();
        EXPECT_EQ(ahead->counters().started != 0, c.readAhead);
    }
}

TEST(ReadAhead, WritesDropWhatWasReadAheadOfThem) {
    struct Case {
        const char* name;
        uint64_t offset;  // of the write, in bytes
        size_t bytes;
        uint64_t next;  // the block asked for after the write
        bool served;    // ... and whether read-ahead still answers it
    };
    // Blocks 0..3 are asked for; 2..11 are then read ahead, all finished before the write.
    const Case cases[] = {
        {"the next block", 4 * kBlock, kBlock, 4, false},
        {"across two blocks", 6 * kBlock - 512, 1024, 6, false},
        {"the last sector read ahead", 12 * kBlock - 512, 512, 11, false},
        {"the block before", 7 * kBlock, kBlock, 8, true},
        {"the block after", 8 * kBlock, kBlock, 7, true},
        {"behind the sweep", kBlock, kBlock, 4, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FakeDevice device(64 * kBlock);
        auto ahead = readAheadOver(device, 64 * kBlock, 8);
        for (uint64_t block = 0; block < 4; ++block) {
            request(*ahead, device, block * kBlock, kBlock);
        }
        device.waitForWorkerReads(10);
        ahead->invalidate(c.offset, c.bytes);
        device.overwrite(c.offset, c.bytes, 0x5A);
        const Answer next = request(*ahead, device, c.next * kBlock, kBlock);
        EXPECT_EQ(next.served, c.served);
        expectAnswerOfDevice(next, device, c.next * kBlock, kBlock);
        for (uint64_t block = c.next + 1; block < 64; ++block) {
            expectAnswerOfDevice(request(*ahead, device, block * kBlock, kBlock), device,
                                 block * kBlock, kBlock);
        }
        ahead->drain();
        EXPECT_GT(ahead->counters().served, 45u) << "read-ahead resumes after the write";
    }
}

TEST(ReadAhead, LeavingTheStreamDropsReadsWithoutWaitingForThem) {
    struct Case {
        const char* name;
        uint64_t offRequest;  // in blocks; a request the stream does not predict
        bool drainBeforeOpening;
    };
    const Case cases[] = {
        {"a jump back", 0, false},
        {"a jump far ahead", 50, false},
        {"a repeat", 1, false},
        {"drained while the reads are held", 30, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        FakeDevice device(64 * kBlock);
        auto ahead = readAheadOver(device, 64 * kBlock, 4);
        device.closeGate();
        request(*ahead, device, 0, kBlock);
        request(*ahead, device, kBlock, kBlock);  // blocks 2..5 go ahead and are held
        device.waitForHeld(4);
        // Answered at once, although every read ahead is still held.
        const Answer off = request(*ahead, device, c.offRequest * kBlock, kBlock);
        EXPECT_FALSE(off.served);
        expectAnswerOfDevice(off, device, c.offRequest * kBlock, kBlock);
        EXPECT_EQ(ahead->counters().discarded, 4u);
        size_t inFlightWhenDrained = 99;
        std::thread drainer;
        if (c.drainBeforeOpening) {
            drainer = std::thread([&] {
                ahead->drain();
                inFlightWhenDrained = device.inFlight();
            });
        }
        device.openGate();
        if (drainer.joinable()) {
            drainer.join();
        } else {
            ahead->drain();
            inFlightWhenDrained = device.inFlight();
        }
        EXPECT_EQ(inFlightWhenDrained, 0u);
        EXPECT_EQ(device.workerReads(), 4u);
        // The dropped blocks are free again and nothing stale is served from them.
        device.overwrite(2 * kBlock, 4 * kBlock, 0x11);
        for (uint64_t block = 0; block < 16; ++block) {
            expectAnswerOfDevice(request(*ahead, device, block * kBlock, kBlock), device,
                                 block * kBlock, kBlock);
        }
        EXPECT_EQ(ahead->counters().served, 14u);
    }
}

// A clock that only moves when the device reads: every worker read takes 40 ms of it (one
// worker at a time, so that the reads do not overlap).
class DeviceTimeClock : public os::Clock {
public:
    DeviceTimeClock() : real_(os::clock()) { os::installClock(this); }
    ~DeviceTimeClock() override { os::installClock(nullptr); }
    uint64_t nowMilliseconds() override { return now_.load(); }
    uint64_t monotonicMilliseconds() override { return now_.load(); }
    void sleep(uint32_t milliseconds) override { now_ += milliseconds; }
    bool wait(os::Waitable& object, uint32_t timeoutMs) override {
        return real_.wait(object, timeoutMs);
    }

private:
    os::Clock& real_;
    std::atomic<uint64_t> now_{0};
};

// A slow block must show as slow on the map even when it was read ahead long before it was
// asked for: what a served request carries is its block's own read time.
TEST(ReadAhead, AServedRequestCarriesItsBlocksOwnReadTime) {
    const DeviceTimeClock clock;
    FakeDevice device(64 * kBlock);
    const ReadAhead::Reader timed = [reader = device.reader()](
                                        uint64_t offset, unsigned char* buffer, size_t bytes) {
        const os::IoResult result = reader(offset, buffer, bytes);
        os::sleepMilliseconds(40);
        return result;
    };
    ReadAhead ahead(timed, 64 * kBlock, kAlignment, 1, 16 * kBlock);
    std::size_t served = 0;
    for (uint64_t block = 0; block < 12; ++block) {
        const Answer answer = request(ahead, device, block * kBlock, kBlock);
        // Let every read begun finish first: the next request then waits for nothing.
        device.waitForWorkerReads(ahead.counters().started);
        if (!answer.served) continue;
        ++served;
        EXPECT_EQ(answer.readMs, 40u) << "block " << block;
    }
    EXPECT_GE(served, 6u);
}

TEST(ReadAhead, DestructionWaitsForReadsInFlight) {
    for (const unsigned depth : {1u, 4u, 8u}) {
        SCOPED_TRACE(testing::Message() << "depth " << depth);
        FakeDevice device(64 * kBlock);
        auto ahead = readAheadOver(device, 64 * kBlock, depth);
        device.closeGate();
        request(*ahead, device, 0, kBlock);
        request(*ahead, device, kBlock, kBlock);  // the next `depth` blocks go ahead, held
        device.waitForHeld(depth);
        size_t inFlightAfter = 99;
        std::thread destroyer([&] {
            ahead.reset();
            inFlightAfter = device.inFlight();
        });
        device.openGate();
        destroyer.join();
        EXPECT_EQ(inFlightAfter, 0u);
        EXPECT_EQ(device.workerReads(), depth);
    }
}

}  // namespace

// host::ReadAhead: reads the blocks a drive is about to be asked for while the caller is busy
// with the current one, so that a sweep over a disk keeps several requests outstanding.
//
// Every read the drive is asked for passes through serve(). Read-ahead starts only once the
// requests form a stream: a request starting where the previous one ended, or the third of
// three requests a constant stride apart (upward). It then keeps up to `depth` blocks of the
// predicted requests queued or in flight on as many worker threads, and serves a request from
// a finished block that holds all of it. A request off the stream drops every block it did not
// use: queued ones are never read, reads in flight finish in the background and are discarded.
// Memory is `depth` + 1 buffers of at most `maxBlockBytes` each, whatever the device's size.
//
// Results: a block read ahead for exactly the requested range answers with that read's own
// result, failure included, so an error still belongs to the request it would have failed and
// arrives when that request is made. A failed block that only contains the request is not used.
//
// Thread safety: serve(), invalidate() and drain() are called from one thread at a time (the
// drive's user); the reader is called from the worker threads, concurrently.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "drives/BlockDeviceBuffer.h"
#include "drives/ReadPattern.h"
#include "os/Device.h"

namespace host {

// What read-ahead did since it was created; for tests and logs.
struct ReadAheadCounters {
    uint64_t started = 0;    // background reads begun
    uint64_t served = 0;     // requests answered from a block read ahead
    uint64_t discarded = 0;  // blocks read, or queued, and never used
};

class ReadAhead {
public:
    // Reads `bytes` bytes at byte `offset` into `buffer` (aligned as asked at construction);
    // the result as os::readAt gives it. Called on worker threads; must not throw.
    using Reader =
        std::function<os::IoResult(uint64_t offset, unsigned char* buffer, size_t bytes)>;

    // Reads nothing beyond byte `limit`. `alignment` is a power of two; `depth` >= 1.
    // Starts no thread until a stream is seen.
    ReadAhead(Reader reader, uint64_t limit, size_t alignment, unsigned depth,
              size_t maxBlockBytes);
    // Drops what is queued and waits for the reads in flight (at most `depth`).
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // Takes note of a request for `bytes` bytes at `offset` and queues what the stream
    // predicts. True when the request was answered from a block read ahead: then `destination`
    // holds the data (unless *result says the read failed), *result is the read's outcome and
    // *readMs the milliseconds the block's own read took on the device, however long ago.
    // False when the caller must read the range itself; `destination` is untouched.
    bool serve(uint64_t offset, size_t bytes, unsigned char* destination, os::IoResult* result,
               uint64_t* readMs);

    // The range is about to be written: no block overlapping it will be served, and the
    // stream is forgotten (reads mixed with writes are not a sweep worth reading ahead of).
    void invalidate(uint64_t offset, size_t bytes);

    // Forgets the stream and every block, waiting for the reads in flight. Needed before the
    // handle the reader uses changes or closes.
    void drain();

    ReadAheadCounters counters() const;

private:
    enum class State { Free, Queued, Reading, Done };
    struct Block {
        State state = State::Free;
        bool abandoned = false;  // a read in flight whose data nobody may use
        uint64_t offset = 0;
        size_t bytes = 0;
        os::IoResult result;
        uint64_t readMs = 0;  // how long the device took to read it
        AlignedBuffer buffer;
        unsigned char* data = nullptr;  // in buffer, big enough for bytes
    };

    // The block holding all of the range and still usable; nullptr when none.
    Block* findHolder(uint64_t offset, size_t bytes);
    // Calls visit(offset, bytes) for each of the next `depth` requests the stream expects that
    // lie below the limit (cut at it), nearest first. Nothing when not streaming.
    template <typename Visit>
    void forEachPredicted(Visit visit) const;
    bool isPredicted(const Block& block) const;
    // Frees or abandons `block` as unused. REQUIRES: mutex_ held.
    void discard(Block& block);
    // Queues the predicted blocks not yet queued or held into free blocks, nearest first.
    void queueAhead();
    bool isQueuedOrHeld(uint64_t offset, size_t bytes) const;
    Block* freeBlock();
    void startWorkers();
    void work();

    Reader reader_;
    uint64_t limit_;
    size_t alignment_;
    unsigned depth_;
    size_t maxBlockBytes_;
    ReadPattern pattern_;
    std::vector<Block> blocks_;
    std::deque<Block*> queue_;  // oldest (nearest) first
    std::vector<std::thread> workers_;
    mutable std::mutex mutex_;
    std::condition_variable queued_;    // workers wait here for blocks to read
    std::condition_variable finished_;  // the caller waits here for reads to end
    bool stopping_ = false;
    ReadAheadCounters counters_;
};

}  // namespace host

#include "drives/ReadAhead.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include "os/Clock.h"

namespace host {

ReadAhead::ReadAhead(Reader reader, uint64_t limit, size_t alignment, unsigned depth,
                     size_t maxBlockBytes)
    : reader_(std::move(reader)),
      limit_(limit),
      alignment_(alignment),
      depth_(depth),
      maxBlockBytes_(maxBlockBytes),
      blocks_(depth + 1) {}

ReadAhead::~ReadAhead() {
    drain();
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    queued_.notify_all();
    for (std::thread& worker : workers_) {
        worker.join();
    }
}

bool ReadAhead::serve(uint64_t offset, size_t bytes, unsigned char* destination,
                      os::IoResult* result, uint64_t* readMs) {
    std::unique_lock<std::mutex> lock(mutex_);
    pattern_.observe(offset, bytes);
    Block* holder = findHolder(offset, bytes);
    for (Block& block : blocks_) {
        if (&block != holder && block.state != State::Free && !block.abandoned &&
            !isPredicted(block)) {
            discard(block);
        }
    }
    // Queue before waiting, so that the device stays busy while this request is answered.
    queueAhead();
    if (holder == nullptr) {
        return false;
    }
    finished_.wait(lock, [holder] { return holder->state == State::Done; });
    const os::IoResult& read = holder->result;
    const bool exact = holder->offset == offset && holder->bytes == bytes;
    const bool holdsAll = read.error.ok() && offset + bytes <= holder->offset + read.bytes;
    if (!exact && !holdsAll) {
        // The failure may lie outside the request: let the caller find out for itself.
        discard(*holder);
        return false;
    }
    const size_t skipped = static_cast<size_t>(offset - holder->offset);
    const size_t copied = exact ? read.bytes : bytes;
    std::memcpy(destination, holder->data + skipped, copied);
    *result = exact ? read : os::IoResult{bytes, {}};
    *readMs = holder->readMs;
    holder->state = State::Free;
    ++counters_.served;
    return true;
}

void ReadAhead::invalidate(uint64_t offset, size_t bytes) {
    const std::lock_guard<std::mutex> lock(mutex_);
    pattern_.reset();
    for (Block& block : blocks_) {
        const bool overlaps = block.offset < offset + bytes && offset < block.offset + block.bytes;
        if (block.state != State::Free && !block.abandoned && overlaps) {
            discard(block);
        }
    }
}

void ReadAhead::drain() {
    std::unique_lock<std::mutex> lock(mutex_);
    pattern_.reset();
    for (Block& block : blocks_) {
        if (block.state != State::Free && !block.abandoned) {
            discard(block);
        }
    }
    finished_.wait(lock, [this] {
        return std::all_of(blocks_.begin(), blocks_.end(),
                           [](const Block& block) { return block.state == State::Free; });
    });
}

ReadAheadCounters ReadAhead::counters() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return counters_;
}

ReadAhead::Block* ReadAhead::findHolder(uint64_t offset, size_t bytes) {
    Block* holder = nullptr;
    for (Block& block : blocks_) {
        if (block.state == State::Free || block.abandoned || block.offset > offset ||
            offset + bytes > block.offset + block.bytes) {
            continue;
        }
        if (block.offset == offset && block.bytes == bytes) {
            return &block;
        }
        if (holder == nullptr) {
            holder = &block;
        }
    }
    return holder;
}

template <typename Visit>
void ReadAhead::forEachPredicted(Visit visit) const {
    const uint64_t stride = pattern_.stride();
    if (stride == 0 || pattern_.predictedBytes() > maxBlockBytes_) {
        return;
    }
    uint64_t offset = pattern_.lastOffset();
    for (unsigned k = 0; k < depth_ && offset < limit_ && limit_ - offset > stride; ++k) {
        offset += stride;
        visit(offset,
              static_cast<size_t>(std::min<uint64_t>(pattern_.predictedBytes(), limit_ - offset)));
    }
}

bool ReadAhead::isPredicted(const Block& block) const {
    bool predicted = false;
    forEachPredicted([&](uint64_t offset, size_t bytes) {
        predicted = predicted || (block.offset == offset && block.bytes == bytes);
    });
    return predicted;
}

void ReadAhead::discard(Block& block) {
    ++counters_.discarded;
    if (block.state == State::Reading) {
        block.abandoned = true;
        return;
    }
    if (block.state == State::Queued) {
        queue_.erase(std::find(queue_.begin(), queue_.end(), &block));
    }
    block.state = State::Free;
}

void ReadAhead::queueAhead() {
    size_t queued = 0;
    bool full = false;
    forEachPredicted([&](uint64_t offset, size_t bytes) {
        if (full || isQueuedOrHeld(offset, bytes)) {
            return;
        }
        Block* block = freeBlock();
        if (block == nullptr) {
            full = true;  // the nearer blocks must be read first; the rest waits for a later call
            return;
        }
        block->data = block->buffer.reserve(bytes, alignment_);
        block->offset = offset;
        block->bytes = bytes;
        block->result = os::IoResult{};
        block->state = State::Queued;
        queue_.push_back(block);
        ++queued;
    });
    if (queued != 0) {
        startWorkers();
    }
    // One worker per block: waking them all would only have the rest go back to sleep.
    for (; queued != 0; --queued) {
        queued_.notify_one();
    }
}

bool ReadAhead::isQueuedOrHeld(uint64_t offset, size_t bytes) const {
    return std::any_of(blocks_.begin(), blocks_.end(), [&](const Block& block) {
        return block.state != State::Free && !block.abandoned && block.offset == offset &&
               block.bytes == bytes;
    });
}

ReadAhead::Block* ReadAhead::freeBlock() {
    for (Block& block : blocks_) {
        if (block.state == State::Free) {
            return &block;
        }
    }
    return nullptr;
}

void ReadAhead::startWorkers() {
    while (workers_.size() < depth_) {
        workers_.emplace_back([this] { work(); });
    }
}

void ReadAhead::work() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        queued_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
        if (stopping_) {
            return;
        }
        Block* block = queue_.front();
        queue_.pop_front();
        block->state = State::Reading;
        ++counters_.started;
        const uint64_t offset = block->offset;
        const size_t bytes = block->bytes;
        unsigned char* data = block->data;
        lock.unlock();
        const uint64_t started = os::clock().monotonicMilliseconds();
        os::IoResult read = reader_(offset, data, bytes);
        const uint64_t readMs = os::clock().monotonicMilliseconds() - started;
        lock.lock();
        if (block->abandoned) {
            block->abandoned = false;
            block->state = State::Free;
        } else {
            block->result = std::move(read);
            block->readMs = readMs;
            block->state = State::Done;
        }
        finished_.notify_all();
    }
}

}  // namespace host

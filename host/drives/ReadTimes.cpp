#include "drives/ReadTimes.h"

#include <algorithm>

namespace host {

TimeClass timeClassOf(uint64_t ms, bool failed) {
    if (failed) return TimeClass::Failed;
    if (ms < 3) return TimeClass::Under3ms;
    if (ms < 10) return TimeClass::Under10ms;
    if (ms < 50) return TimeClass::Under50ms;
    if (ms < 150) return TimeClass::Under150ms;
    if (ms < 500) return TimeClass::Under500ms;
    return TimeClass::Over500ms;
}

ReadTimes::ReadTimes(uint64_t totalSectors) : totalSectors_(totalSectors) {
    while ((totalSectors_ + sectorsPerBlock_ - 1) / sectorsPerBlock_ > kMaxBlocks)
        sectorsPerBlock_ *= 2;
    blocks_ = (totalSectors_ + sectorsPerBlock_ - 1) / sectorsPerBlock_;
    classes_.assign(static_cast<std::size_t>((blocks_ + 1) / 2), 0);
}

void ReadTimes::add(uint64_t first, uint64_t sectors, uint64_t ms, bool failed) {
    const TimeClass timeClass = timeClassOf(ms, failed);
    ++histogram_[static_cast<std::size_t>(timeClass)];
    if (first < totalSectors_ && sectors > 0) {
        const uint64_t last = std::min(first + sectors, totalSectors_) - 1;
        for (uint64_t block = first / sectorsPerBlock_; block <= last / sectorsPerBlock_; ++block)
            raise(block, timeClass);
    }
    if (failed) return;
    const TimedRead read{first, ms};
    const auto slower = [](const TimedRead& a, const TimedRead& b) { return a.ms > b.ms; };
    const auto at = std::upper_bound(slowest_.begin(), slowest_.end(), read, slower);
    if (static_cast<std::size_t>(at - slowest_.begin()) >= kSlowestKept) return;
    slowest_.insert(at, read);
    if (slowest_.size() > kSlowestKept) slowest_.pop_back();
}

TimeClass ReadTimes::blockClass(uint64_t index) const {
    if (index >= blocks_) return TimeClass::Unread;
    const uint8_t pair = classes_[static_cast<std::size_t>(index / 2)];
    return static_cast<TimeClass>(index % 2 == 0 ? pair & 0x0F : pair >> 4);
}

void ReadTimes::raise(uint64_t block, TimeClass timeClass) {
    if (blockClass(block) >= timeClass) return;
    uint8_t& pair = classes_[static_cast<std::size_t>(block / 2)];
    const auto value = static_cast<uint8_t>(timeClass);
    pair = block % 2 == 0 ? static_cast<uint8_t>((pair & 0xF0) | value)
                          : static_cast<uint8_t>((pair & 0x0F) | (value << 4));
}

}  // namespace host

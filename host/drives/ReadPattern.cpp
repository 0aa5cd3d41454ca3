#include "drives/ReadPattern.h"

namespace host {

void ReadPattern::observe(uint64_t offset, size_t bytes) {
    const bool upward = seen_ && offset > lastOffset_;
    const uint64_t distance = upward ? offset - lastOffset_ : 0;
    if (upward && distance == lastBytes_) {
        stride_ = bytes;
    } else if (upward && distance == lastDistance_) {
        stride_ = distance;
    } else {
        stride_ = 0;
    }
    seen_ = true;
    lastOffset_ = offset;
    lastBytes_ = bytes;
    lastDistance_ = distance;
}

void ReadPattern::reset() { *this = ReadPattern{}; }

}  // namespace host

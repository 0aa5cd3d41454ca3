#include "cli/ProgressTracker.h"

namespace host {
namespace {

// Below this share done a library estimate of 0 says only that it has not measured yet.
constexpr unsigned int kTrustZeroEstimateFrom = 95;

}  // namespace

void ProgressTracker::startPass(uint64_t nowMs) {
    shown_ = 0;
    closed_ = false;
    libraryEstimate_.reset();
    passStartMs_ = nowMs;
}

bool ProgressTracker::percentDone(unsigned int percent) {
    if (percent > 100) percent = 100;
    if (percent == 100) {
        closed_ = true;
        return false;
    }
    closed_ = false;
    const bool changed = percent != shown_;
    shown_ = percent;
    return changed;
}

bool IntervalGate::admit(double intervalMs, uint64_t nowMs) {
    const double interval = intervalMs > 0.0 ? intervalMs : kDefaultIntervalMs;
    if (lastMs_ && static_cast<double>(nowMs - *lastMs_) < interval) return false;
    lastMs_ = nowMs;
    return true;
}

unsigned int ProgressTracker::finish(bool endedEarly) const {
    return closed_ && !endedEarly ? 100 : shown_;
}

std::optional<unsigned int> ProgressTracker::secondsLeft(uint64_t nowMs) const {
    if (libraryEstimate_ && (*libraryEstimate_ > 0 || shown_ >= kTrustZeroEstimateFrom))
        return libraryEstimate_;
    if (shown_ == 0 || !passStartMs_ || nowMs <= *passStartMs_) return std::nullopt;
    const uint64_t elapsedMs = nowMs - *passStartMs_;
    const uint64_t leftMs = elapsedMs * (100 - shown_) / shown_;
    // Rounded up: "0:00 left" only once nothing is.
    return static_cast<unsigned int>((leftMs + 999) / 1000);
}

}  // namespace host

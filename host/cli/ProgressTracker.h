// What drivediag shows of a run's progress, worked out from what the library reports: the
// percentage reached, the time left and when the next progress line may be written.
#pragma once

#include <cstdint>
#include <optional>

namespace host {

// Lets through at most one line per interval.
class IntervalGate {
public:
    // Interval between lines when the library gives none.
    static constexpr double kDefaultIntervalMs = 1000.0;

    // True when a line may be written at `nowMs`: the first, then at most one per `intervalMs`
    // (kDefaultIntervalMs when 0 or less). Counts the line as written.
    bool admit(double intervalMs, uint64_t nowMs);

private:
    std::optional<uint64_t> lastMs_;
};

class ProgressTracker {
public:
    // A pass starts (a run, or a rerun after resetPercentDone) at `nowMs`.
    void startPass(uint64_t nowMs);

    // The library's percentage. A closing 100 that a pass reports however far it got is held
    // back until finish() knows whether the pass got there. True when what is shown changes.
    bool percentDone(unsigned int percent);
    // The library's own estimate, in seconds.
    void libraryEstimate(unsigned int seconds) { libraryEstimate_ = seconds; }

    // The percentage to show while running.
    unsigned int shown() const { return shown_; }
    // The percentage at the end of the run: 100 when the last pass ran to its end, else how
    // far it got.
    unsigned int finish(bool endedEarly) const;

    // Seconds left: the library's estimate when it has a meaningful one (not 0 with most of
    // the pass ahead), else one from the pass's pace so far; nothing before 1 % is done.
    std::optional<unsigned int> secondsLeft(uint64_t nowMs) const;

private:
    unsigned int shown_ = 0;
    bool closed_ = false;  // a 100 came after shown_
    std::optional<unsigned int> libraryEstimate_;
    std::optional<uint64_t> passStartMs_;  // unset until a pass starts
};

}  // namespace host

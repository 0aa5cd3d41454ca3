#include "PassTiming.h"

#include <algorithm>
#include <limits>

#include "kiv/Log.h"
#include "kiv/System.h"

namespace kivrlibdrive {

PassTiming::PassTiming(const wchar_t* overflowText, std::size_t samples)
    : overflowText_(overflowText), samples_(samples, 0) {}

void PassTiming::Start() {
    previousStepEnd_ = kiv::System::getCurrentTimeMilliseconds();
    lastReport_ = previousStepEnd_;
    std::fill(samples_.begin(), samples_.end(), 0);
    nextSlot_ = 0;
}

bool PassTiming::IsReportDue() const { return previousStepEnd_ - lastReport_ > kReportIntervalMs; }

void PassTiming::MarkReported() { lastReport_ = previousStepEnd_; }

void PassTiming::EndStep() {
    const uint64_t now = kiv::System::getCurrentTimeMilliseconds();
    const uint64_t elapsed = now - previousStepEnd_;
    if (elapsed > std::numeric_limits<uint32_t>::max()) {
        kiv::AssertionFailure::defectLogger()->log(static_cast<int>(kiv::LogPriority::Warning),
                                                   overflowText_);
    }
    samples_[nextSlot_] = static_cast<uint32_t>(elapsed);
    nextSlot_ = (nextSlot_ + 1) % samples_.size();
    previousStepEnd_ = now;
}

uint32_t PassTiming::SecondsLeft(uint64_t remainingSteps) const {
    uint32_t sum = 0;
    for (const uint32_t sample : samples_) {
        sum += sample;
    }
    return static_cast<uint32_t>(sum * remainingSteps / samples_.size() / 1000);
}

}  // namespace kivrlibdrive

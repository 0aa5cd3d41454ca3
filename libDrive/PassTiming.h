// kivrlibdrive::PassTiming: the clock side of one pass of a hard-drive test, shared by the tests
// that walk a range step by step. Internal to the library.
//
// It remembers how long each of the last steps took (milliseconds; a ring of 1000 unless a test
// asks for another size) to estimate the time left, and when progress was last reported, so that
// reports come at most about once a second.
// Times are kiv::System::getCurrentTime() in milliseconds (seconds * 1000 + milliseconds).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kivrlibdrive {

class PassTiming {
public:
    static constexpr std::size_t kSamples = 1000;
    static constexpr uint64_t kReportIntervalMs = 1000;

    // `overflowText` (not owned, a literal) is logged at priority 4 to "DEFECT.GENERIC" when a
    // step's duration does not fit 32 bits (which is also how a clock going backwards shows).
    // `samples` is the size of the ring. REQUIRES: samples > 0.
    explicit PassTiming(const wchar_t* overflowText, std::size_t samples = kSamples);

    // Opens a pass: the end of the previous step and the last report are now; every sample 0.
    void Start();
    // True when more than kReportIntervalMs lie between the last report and the end of the
    // previous step.
    bool IsReportDue() const;
    // The end of the previous step becomes the time of the last report.
    void MarkReported();
    // Closes a step: stores the low 32 bits of (now - end of the previous step) in the next
    // slot (after the last slot comes slot 0); now becomes the end of the previous step.
    void EndStep();
    // Estimated seconds for `remainingSteps` more steps: the sum of all samples (wrapping at 32
    // bits) times remainingSteps / samples / 1000, cut to 32 bits. Slots not yet filled count as
    // 0, so the estimate is low until the whole ring was timed.
    uint32_t SecondsLeft(uint64_t remainingSteps) const;

private:
    const wchar_t* overflowText_;
    std::vector<uint32_t> samples_;
    std::size_t nextSlot_ = 0;
    uint64_t previousStepEnd_ = 0;
    uint64_t lastReport_ = 0;
};

}  // namespace kivrlibdrive

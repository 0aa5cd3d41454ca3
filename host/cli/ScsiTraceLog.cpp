#include "cli/ScsiTraceLog.h"

#include "kiv/Log.h"

namespace host {
namespace {

constexpr int kTracePriority = 1;

class ScsiTraceLog : public kivscsi::TraceSink {
public:
    bool enabled() const override { return logger()->isEnabled(kTracePriority); }
    void write(const std::string& line) override {
        logger()->log(kTracePriority, kiv::String::fromUtf8(line));
    }

private:
    static kiv::Logger* logger() {
        static kiv::Logger* slot = nullptr;
        if (slot == nullptr) kiv::LogFactory::createLogger(kScsiTraceLoggerName, &slot);
        return slot;
    }
};

}  // namespace

std::shared_ptr<kivscsi::TraceSink> makeScsiTraceLog() { return std::make_shared<ScsiTraceLog>(); }

}  // namespace host

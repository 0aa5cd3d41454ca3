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
    // Created once, thread-safely: commands may be traced from several threads at once.
    static kiv::Logger* logger() {
        static kiv::Logger* const created =
            kiv::LogFactory::createLogger(kScsiTraceLoggerName, nullptr);
        return created;
    }
};

}  // namespace

std::shared_ptr<kivscsi::TraceSink> makeScsiTraceLog() { return std::make_shared<ScsiTraceLog>(); }

}  // namespace host

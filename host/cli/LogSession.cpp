#include "cli/LogSession.h"

#include <memory>

#include "cli/ScsiTraceLog.h"
#include "kiv/Exception.h"
#include "kiv/Log.h"

namespace host {

LogSession::~LogSession() {
    if (tracing_) kivscsi::installTraceSink(previousTrace_);
    if (addedSink_) kiv::LogFactory::removeAllSinks();
    if (previousPriority_) kiv::LogFactory::setPriority(*previousPriority_);
}

bool LogSession::start(const std::optional<std::string>& file, std::optional<int> level,
                       std::string* error) {
    if (file) {
        try {
            kiv::LogFactory::addSink(std::make_unique<kiv::FileSink>(kiv::String::fromUtf8(*file)));
        } catch (const kiv::Exception& e) {
            if (error)
                *error = "cannot open the log file " + *file + ": " + e.getMessage().toUtf8();
            return false;
        }
        addedSink_ = true;
    } else if (level) {
        kiv::LogFactory::addSink(std::make_unique<kiv::StandardErrorSink>());
        addedSink_ = true;
    }
    if (level) {
        previousPriority_ = kiv::LogFactory::getPriority();
        kiv::LogFactory::setPriority(*level);
    }
    previousTrace_ = kivscsi::installTraceSink(makeScsiTraceLog());
    tracing_ = true;
    return true;
}

}  // namespace host

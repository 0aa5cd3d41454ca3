#include "scsi/TracingTransport.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

#include "CommandNames.h"
#include "scsi/Sense.h"

namespace kivscsi {
namespace {

std::mutex sinkMutex;
std::shared_ptr<TraceSink> installedSink;

void appendHex(std::string& out, const uint8_t* bytes, size_t count) {
    char digits[4];
    for (size_t i = 0; i < count; ++i) {
        std::snprintf(digits, sizeof(digits), i == 0 ? "%02X" : " %02X", bytes[i]);
        out += digits;
    }
}

std::string traceLine(const std::string& device, const ScsiCommand& command,
                      const ScsiResponse& response) {
    std::string line = device;
    if (const char* name = command.cdbLength > 0 ? commandName(command.cdb[0]) : nullptr) {
        line += ' ';
        line += name;
    }
    line += " CDB ";
    appendHex(line, command.cdb.data(), std::min<size_t>(command.cdbLength, kMaxCdbLength));
    char text[64];
    std::snprintf(text, sizeof(text), " -> %04X in %u ms",
                  static_cast<unsigned>(statusFromResponse(response)),
                  static_cast<unsigned>(response.durationMs));
    line += text;
    if (response.transportStatus == kStatusGood && response.residual != 0) {
        line += ", residual " + std::to_string(response.residual);
    }
    if (response.transportStatus == kStatusGood && response.senseLength != 0) {
        line += ", sense ";
        appendHex(line, response.sense.data(),
                  std::min<size_t>(response.senseLength, kMaxSenseLength));
    }
    return line;
}

}  // namespace

TraceSink::~TraceSink() = default;

std::shared_ptr<TraceSink> installTraceSink(std::shared_ptr<TraceSink> sink) {
    const std::lock_guard<std::mutex> lock(sinkMutex);
    installedSink.swap(sink);
    return sink;
}

std::shared_ptr<TraceSink> installedTraceSink() {
    const std::lock_guard<std::mutex> lock(sinkMutex);
    return installedSink;
}

TracingTransport::TracingTransport(std::unique_ptr<Transport> inner, std::string deviceName,
                                   std::shared_ptr<TraceSink> sink)
    : inner_(std::move(inner)), deviceName_(std::move(deviceName)), sink_(std::move(sink)) {}

ScsiResponse TracingTransport::send(const ScsiCommand& command) {
    const ScsiResponse response = inner_->send(command);
    if (sink_ && sink_->enabled()) sink_->write(traceLine(deviceName_, command, response));
    return response;
}

}  // namespace kivscsi

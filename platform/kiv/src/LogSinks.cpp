#include <cstdio>
#include <mutex>

#include "LogRegistry.h"
#include "PlatformFile.h"
#include "kiv/Exception.h"
#include "kiv/Log.h"

namespace kiv {

void StandardErrorSink::write(const LogRecord& record) {
    const std::string line = formatLogLine(record) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

struct FileSink::Impl {
    std::FILE* file = nullptr;
};

FileSink::FileSink(const String& path) : impl_(std::make_unique<Impl>()) {
    impl_->file = platform::openFile(path, platform::FileMode::Append);
    if (!impl_->file) throw Exception(L"Cannot open the log file " + path);
}

FileSink::~FileSink() {
    if (impl_->file) std::fclose(impl_->file);
}

void FileSink::write(const LogRecord& record) {
    const std::string line = formatLogLine(record) + "\n";
    std::fwrite(line.data(), 1, line.size(), impl_->file);
    std::fflush(impl_->file);
}

struct MemorySink::Impl {
    mutable std::mutex mutex;
    std::vector<LogRecord> records;
};

std::shared_ptr<MemorySink::Impl> MemorySink::makeImpl() { return std::make_shared<Impl>(); }

void MemorySink::write(const LogRecord& record) {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->records.push_back(record);
}

std::vector<LogRecord> MemorySink::records() const {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    return impl_->records;
}

void MemorySink::clear() {
    std::lock_guard<std::mutex> lock(impl_->mutex);
    impl_->records.clear();
}

}  // namespace kiv

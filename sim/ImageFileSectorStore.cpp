#include <algorithm>
#include <system_error>

#include "kiv/Exception.h"
#include "sim/SectorStore.h"

namespace sim {
namespace {

std::fstream openImage(const std::filesystem::path& path) {
    constexpr auto kReadWrite = std::ios::in | std::ios::out | std::ios::binary;
    std::fstream file(path, kReadWrite);
    if (!file.is_open()) {
        // Missing: create it empty, then reopen for both directions.
        std::ofstream created(path, std::ios::binary);
        created.close();
        file.open(path, kReadWrite);
    }
    if (!file.is_open()) {
        throw kiv::Exception(kiv::String(L"cannot open the image file ") + path.wstring());
    }
    return file;
}

}  // namespace

ImageFileSectorStore::ImageFileSectorStore(const std::filesystem::path& path,
                                           uint32_t bytesPerSector)
    : file_(openImage(path)), bytesPerSector_(bytesPerSector) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    size_ = error ? 0 : static_cast<uint64_t>(size);
}

bool ImageFileSectorStore::readSector(uint64_t lba, uint8_t* out) {
    std::fill(out, out + bytesPerSector_, uint8_t{0});
    const uint64_t offset = lba * bytesPerSector_;
    if (offset >= size_) {
        return true;
    }
    const uint64_t available = std::min<uint64_t>(bytesPerSector_, size_ - offset);
    file_.seekg(static_cast<std::streamoff>(offset));
    file_.read(reinterpret_cast<char*>(out), static_cast<std::streamsize>(available));
    const bool ok = static_cast<uint64_t>(file_.gcount()) == available;
    file_.clear();
    return ok;
}

bool ImageFileSectorStore::writeSector(uint64_t lba, const uint8_t* data) {
    const uint64_t offset = lba * bytesPerSector_;
    file_.seekp(static_cast<std::streamoff>(offset));
    file_.write(reinterpret_cast<const char*>(data), bytesPerSector_);
    file_.flush();
    const bool ok = file_.good();
    file_.clear();
    if (ok) {
        size_ = std::max(size_, offset + bytesPerSector_);
    }
    return ok;
}

}  // namespace sim

// Where a simulated drive keeps its sectors. Addresses are checked by the drive before they
// reach a store; a store only moves bytes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include "sim/SimulatedDriveConfig.h"

namespace sim {

class SectorStore {
public:
    virtual ~SectorStore();
    // Copies sector `lba` into `out` (one sector long). False on an I/O failure of the backing.
    virtual bool readSector(uint64_t lba, uint8_t* out) = 0;
    // Replaces sector `lba` with `data` (one sector long). False on an I/O failure.
    virtual bool writeSector(uint64_t lba, const uint8_t* data) = 0;
};

// Sparse memory: only sectors whose content differs from the unwritten content are kept, so
// writing a sector's original content back releases it.
class MemorySectorStore : public SectorStore {
public:
    MemorySectorStore(uint32_t bytesPerSector, UnwrittenContent unwritten);
    bool readSector(uint64_t lba, uint8_t* out) override;
    bool writeSector(uint64_t lba, const uint8_t* data) override;
    // Sectors held in memory.
    std::size_t storedSectors() const { return sectors_.size(); }

private:
    uint32_t bytesPerSector_;
    UnwrittenContent unwritten_;
    std::map<uint64_t, std::vector<uint8_t>> sectors_;
};

// An image file: sector n at byte n * bytesPerSector. Bytes past the file's end read as zeros;
// a write past it grows the file.
class ImageFileSectorStore : public SectorStore {
public:
    // Opens `path` for reading and writing, creating it when missing. Throws kiv::Exception when
    // it cannot be opened.
    ImageFileSectorStore(const std::filesystem::path& path, uint32_t bytesPerSector);
    bool readSector(uint64_t lba, uint8_t* out) override;
    bool writeSector(uint64_t lba, const uint8_t* data) override;
    uint64_t sizeInBytes() const { return size_; }

private:
    std::fstream file_;
    uint32_t bytesPerSector_;
    uint64_t size_ = 0;
};

}  // namespace sim

#include "drives/UndoJournalFormat.h"

#include <array>
#include <cstring>
#include <unordered_set>

#include "drives/Crc32c.h"

namespace host::undo {
namespace {

constexpr char kMagic[8] = {'D', 'D', 'U', 'N', 'D', 'O', '0', '1'};
constexpr uint32_t kRecordTag = 0x44434552;  // "RECD"
constexpr uint32_t kDoneTag = 0x454E4F44;    // "DONE"
// Device paths longer than this are not paths a journal could have been written for.
constexpr uint32_t kLongestPath = 4096;
constexpr uint32_t kLargestSector = 65536;

class Writer {
public:
    void u32(uint32_t value) { put(value, 4); }
    void u64(uint64_t value) { put(value, 8); }
    void bytes(const void* data, std::size_t size) {
        const auto* from = static_cast<const unsigned char*>(data);
        out_.insert(out_.end(), from, from + size);
    }
    std::vector<unsigned char> sealed() {
        u32(crc32c(out_.data(), out_.size()));
        return std::move(out_);
    }

private:
    void put(uint64_t value, int size) {
        for (int i = 0; i < size; ++i) out_.push_back(static_cast<unsigned char>(value >> (8 * i)));
    }
    std::vector<unsigned char> out_;
};

// Reads one entry's bytes and checks its checksum as it goes.
class Reader {
public:
    explicit Reader(std::istream& in) : in_(in) {}

    bool u32(uint32_t* value) { return get(value, 4); }
    bool u64(uint64_t* value) { return get(value, 8); }
    bool bytes(void* into, std::size_t size) {
        if (!in_.read(static_cast<char*>(into), static_cast<std::streamsize>(size))) return false;
        crc_ = crc32c(into, size, crc_);
        consumed_ += size;
        return true;
    }
    // Reads the stored checksum and compares it with the bytes read since the entry began.
    bool sealIntact() {
        const uint32_t expected = crc_;
        uint32_t stored = 0;
        return u32(&stored) && stored == expected;
    }
    void beginEntry() {
        crc_ = 0;
        consumed_ = 0;
    }
    uint64_t consumed() const { return consumed_; }

private:
    template <typename T>
    bool get(T* value, std::size_t size) {
        std::array<unsigned char, 8> raw{};
        if (!bytes(raw.data(), size)) return false;
        T result = 0;
        for (std::size_t i = 0; i < size; ++i) result |= static_cast<T>(raw[i]) << (8 * i);
        *value = result;
        return true;
    }
    std::istream& in_;
    uint32_t crc_ = 0;
    uint64_t consumed_ = 0;
};

bool readHeader(Reader& reader, Header* header) {
    char magic[sizeof kMagic];
    uint32_t pathLength = 0;
    if (!reader.bytes(magic, sizeof magic) || std::memcmp(magic, kMagic, sizeof magic) != 0 ||
        !reader.u32(&header->sectorSize) || !reader.u64(&header->totalSectors) ||
        !reader.u32(&pathLength) || pathLength > kLongestPath) {
        return false;
    }
    header->devicePath.resize(pathLength);
    return reader.bytes(header->devicePath.data(), pathLength) && reader.sealIntact() &&
           header->sectorSize != 0 && header->sectorSize <= kLargestSector;
}

// One record's body after its tag, or false when it is cut off, implausible or damaged.
bool readRecord(Reader& reader, const Header& header, Record* record) {
    if (!reader.u64(&record->id) || !reader.u64(&record->firstSector) ||
        !reader.u32(&record->sectorCount)) {
        return false;
    }
    const uint64_t bytes = uint64_t{record->sectorCount} * header.sectorSize;
    if (record->sectorCount == 0 || bytes > kLargestRecordBytes ||
        record->firstSector >= header.totalSectors ||
        record->sectorCount > header.totalSectors - record->firstSector) {
        return false;
    }
    record->data.resize(bytes);
    return reader.bytes(record->data.data(), bytes) && reader.sealIntact();
}

}  // namespace

std::vector<unsigned char> encodeHeader(const Header& header) {
    Writer writer;
    writer.bytes(kMagic, sizeof kMagic);
    writer.u32(header.sectorSize);
    writer.u64(header.totalSectors);
    writer.u32(static_cast<uint32_t>(header.devicePath.size()));
    writer.bytes(header.devicePath.data(), header.devicePath.size());
    return writer.sealed();
}

std::vector<unsigned char> encodeRecord(uint64_t id, uint64_t firstSector, uint32_t sectorCount,
                                        const unsigned char* data, std::size_t bytes) {
    Writer writer;
    writer.u32(kRecordTag);
    writer.u64(id);
    writer.u64(firstSector);
    writer.u32(sectorCount);
    writer.bytes(data, bytes);
    return writer.sealed();
}

std::vector<unsigned char> encodeDone(uint64_t id) {
    Writer writer;
    writer.u32(kDoneTag);
    writer.u64(id);
    return writer.sealed();
}

std::optional<Contents> readJournal(std::istream& in, std::string* error) {
    Contents contents;
    Reader reader(in);
    if (!readHeader(reader, &contents.header)) {
        if (error) *error = "not an undo journal of drivediag, or its header is damaged";
        return std::nullopt;
    }
    std::vector<Record> records;
    std::unordered_set<uint64_t> done;
    for (;;) {
        reader.beginEntry();
        const std::streamoff entryStart = in.tellg();
        uint32_t tag = 0;
        bool intact = reader.u32(&tag);
        if (intact && tag == kRecordTag) {
            Record record;
            intact = readRecord(reader, contents.header, &record);
            if (intact) records.push_back(std::move(record));
        } else if (intact && tag == kDoneTag) {
            uint64_t id = 0;
            intact = reader.u64(&id) && reader.sealIntact();
            if (intact) done.insert(id);
        } else {
            intact = false;
        }
        if (!intact) {
            // The end, or a cut-off or damaged entry: nothing after it can be trusted to start
            // where it seems to.
            in.clear();
            in.seekg(0, std::ios::end);
            contents.ignoredBytes = static_cast<uint64_t>(in.tellg() - entryStart);
            break;
        }
    }
    for (Record& record : records) {
        if (done.count(record.id) != 0) {
            ++contents.doneRecords;
        } else {
            contents.pending.push_back(std::move(record));
        }
    }
    return contents;
}

}  // namespace host::undo
